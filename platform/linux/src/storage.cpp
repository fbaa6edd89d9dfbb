#include <winrt/Windows.Storage.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "file_system.h"
#include "implementation.h"
#include "storage_file.h"
#include "stream.h"

namespace runtime {

namespace {

using winrt::Windows::Foundation::IAsyncAction;
using winrt::Windows::Foundation::IAsyncOperation;
using winrt::Windows::Storage::StorageFile;
using winrt::Windows::Storage::Streams::IRandomAccessStream;

class file_stream : public stream_object {
  public:
    explicit file_stream(file_descriptor file) : file(std::move(file)) {}

    uint64_t size() const override {
        struct stat status{};
        if (fstat(file.get(), &status) != 0) {
            throw file_error(errno);
        }
        return static_cast<uint64_t>(status.st_size);
    }

    size_t read(uint64_t place, std::span<uint8_t> target) const override {
        size_t done = 0;
        while (done < target.size()) {
            auto const rest = target.subspan(done);
            auto const count = pread(file.get(), rest.data(), rest.size(), static_cast<off_t>(place + done));
            if (count == 0) {
                break;
            }
            if (count > 0) {
                done += static_cast<size_t>(count);
            } else if (errno != EINTR) {
                throw file_error(errno);
            }
        }
        return done;
    }

  private:
    file_descriptor const file;
};

struct folder_object : winrt::impl::object {
    explicit folder_object(std::string path) : path(std::move(path)) {}

    std::string const path;
};

IAsyncOperation<StorageFile> find_file(winrt::hstring path) {
    co_await winrt::resume_background();
    auto const native = native_path(path);
    require_regular_file(native);
    co_return StorageFile(std::make_shared<storage_file>(native));
}

IAsyncOperation<StorageFile> create_file_in(std::shared_ptr<folder_object> folder, winrt::hstring name) {
    co_await winrt::resume_background();
    co_return StorageFile(std::make_shared<storage_file>(create_file(folder->path, file_name(name))));
}

IAsyncOperation<IRandomAccessStream> open_file(std::shared_ptr<storage_file> file) {
    co_await winrt::resume_background();
    co_return IRandomAccessStream(std::make_shared<file_stream>(open_regular_file(file->path(), O_RDONLY)));
}

IAsyncAction rename_file(std::shared_ptr<storage_file> file, winrt::hstring name) {
    co_await winrt::resume_background();
    auto const path = file->path();
    file->move_to(path.substr(0, path.rfind('/') + 1) + file_name(name));
}

IAsyncAction delete_file(std::shared_ptr<storage_file> file) {
    co_await winrt::resume_background();
    if (unlink(file->path().c_str()) != 0) {
        throw file_error(errno);
    }
}

}  // namespace

std::string storage_file::path() const {
    std::lock_guard guard(lock);
    return current;
}

void storage_file::move_to(std::string target) {
    std::lock_guard guard(lock);
    if (std::rename(current.c_str(), target.c_str()) != 0) {
        throw file_error(errno);
    }
    current = std::move(target);
}

}  // namespace runtime

namespace winrt::Windows::Storage {

using runtime::folder_object;
using runtime::implementation_of;
using runtime::storage_file;

hstring IStorageFile::Path() const {
    return to_hstring(implementation_of<storage_file>(*this)->path());
}

Foundation::IAsyncOperation<Streams::IRandomAccessStream> IStorageFile::OpenAsync(FileAccessMode) const {
    return runtime::open_file(implementation_of<storage_file>(*this));
}

Foundation::IAsyncAction IStorageFile::RenameAsync(param::hstring const& desiredName,
                                                   NameCollisionOption) const {
    return runtime::rename_file(implementation_of<storage_file>(*this), desiredName.value);
}

Foundation::IAsyncAction IStorageFile::DeleteAsync() const {
    return runtime::delete_file(implementation_of<storage_file>(*this));
}

Foundation::IAsyncOperation<StorageFile> StorageFile::GetFileFromPathAsync(param::hstring const& path) {
    return runtime::find_file(path.value);
}

hstring StorageFolder::Path() const {
    return to_hstring(implementation_of<folder_object>(*this)->path);
}

Foundation::IAsyncOperation<StorageFile> StorageFolder::CreateFileAsync(param::hstring const& desiredName,
                                                                        CreationCollisionOption) const {
    return runtime::create_file_in(implementation_of<folder_object>(*this), desiredName.value);
}

ApplicationData ApplicationData::Current() {
    return ApplicationData(std::make_shared<impl::object>());
}

StorageFolder ApplicationData::TemporaryFolder() const {
    implementation_of<impl::object>(*this);
    return StorageFolder(std::make_shared<folder_object>(runtime::temporary_folder()));
}

}  // namespace winrt::Windows::Storage
