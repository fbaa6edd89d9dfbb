#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <winrt/Windows.Storage.h>

#include <algorithm>
#include <fstream>

#include "await.h"
#include "codeOf.h"
#include "support/TemporaryFolder.h"
#include "ui_thread.h"

using namespace winrt::Windows::Storage;
using namespace winrt::Windows::Storage::Streams;

namespace {

StorageFile fileAt(std::string const& path) {
    return await(StorageFile::GetFileFromPathAsync(winrt::to_hstring(path)));
}

std::string readAll(IInputStream const& stream) {
    DataReader const reader(stream);
    std::vector<uint8_t> bytes(await(reader.LoadAsync(1000)));
    reader.ReadBytes(bytes);
    return {bytes.begin(), bytes.end()};
}

std::string contentOf(std::string const& path) {
    return readAll(await(fileAt(path).OpenAsync(FileAccessMode::Read)));
}

std::string backslashed(std::string path) {
    std::ranges::replace(path, '/', '\\');
    return path;
}

}  // namespace

class StorageTest : public testing::Test {
  protected:
    TemporaryFolder folder;
};

TEST_F(StorageTest, OpensRegularFilesUnderAnyFormOfTheirPath) {
    auto const path = folder.write("ä b%41.html", "content");
    for (auto const& form : {path, path.substr(1), backslashed(path), backslashed(path).substr(1),
                             "//" + path.substr(1), "\\/" + backslashed(path)}) {
        EXPECT_EQ(contentOf(form), "content") << form;
        EXPECT_EQ(winrt::to_string(fileAt(form).Path()), path) << form;
    }
    symlink(path.c_str(), (folder / "link").c_str());
    EXPECT_EQ(contentOf(folder / "link"), "content");
}

TEST_F(StorageTest, RefusesEverythingElseAtOnce) {
    auto const file = folder.write("file", "x");
    mkfifo((folder / "fifo").c_str(), 0600);
    symlink((folder / "nowhere").c_str(), (folder / "dangling").c_str());
    symlink((folder / "loop").c_str(), (folder / "loop").c_str());
    symlink("fifo", (folder / "link-to-fifo").c_str());

    std::pair<std::string, int32_t> const cases[] = {
        {folder / "missing", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)},
        {folder / "dangling", HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)},
        {file + "/below", HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
        {folder / "loop", HRESULT_FROM_WIN32(ERROR_CANT_RESOLVE_FILENAME)},
        {folder / std::string(1 << 20, 'a'), HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE)},
        {folder / "", E_ACCESSDENIED},
        {folder / "fifo", E_ACCESSDENIED},
        {folder / "link-to-fifo", E_ACCESSDENIED},
        {"/dev/null", E_ACCESSDENIED},
        {folder / "../" + folder.path.filename().string() + "/file", E_INVALIDARG},
        {backslashed(folder / "..\\x"), E_INVALIDARG},
        {folder / "./file", E_INVALIDARG},
        {file + std::string(1, '\0') + ".html", E_INVALIDARG},
        {"", E_INVALIDARG},
        {"\\/", E_INVALIDARG},
    };
    for (auto const& [path, code] : cases) {
        EXPECT_EQ(codeOf([&] { fileAt(path); }), code) << path.substr(0, 200);
    }

    // What it has become counts, not what it was.
    auto const opened = fileAt(file);
    unlink(file.c_str());
    mkfifo(file.c_str(), 0600);
    EXPECT_EQ(codeOf([&] { await(opened.OpenAsync(FileAccessMode::Read)); }), E_ACCESSDENIED);
}

TEST_F(StorageTest, TemporaryFilesArePrivateAndReplacedInOneStep) {
    auto const temporary = ApplicationData::Current().TemporaryFolder();
    auto const path = winrt::to_string(temporary.Path());
    struct stat status{};
    ASSERT_EQ(stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    chmod(path.c_str(), 0777);
    ApplicationData::Current().TemporaryFolder();
    stat(path.c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0700u);

    for (auto const& left : std::filesystem::directory_iterator(path)) {
        std::filesystem::remove(left);
    }
    auto const create = [&](std::wstring const& name) {
        return await(temporary.CreateFileAsync(name, CreationCollisionOption::GenerateUniqueName));
    };
    auto const first = create(L"storage test.pdf");
    std::ofstream(winrt::to_string(first.Path())) << "first";
    auto const reader = await(first.OpenAsync(FileAccessMode::Read));
    auto const second = create(L"storage test.pdf");
    EXPECT_EQ(winrt::to_string(second.Path()), path + "/storage test (2).pdf");
    EXPECT_EQ(contentOf(winrt::to_string(second.Path())), "");
    stat(winrt::to_string(second.Path()).c_str(), &status);
    EXPECT_EQ(status.st_mode & 0777, 0600u);

    // A link that somebody has put there is not followed.
    auto const victim = folder.write("victim", "untouched");
    symlink(victim.c_str(), (path + "/storage test.part").c_str());
    std::ofstream(winrt::to_string(create(L"storage test.part").Path())) << "new";
    EXPECT_EQ(contentOf(victim), "untouched");
    unlink((path + "/storage test.part").c_str());

    auto const part = create(L"storage test.part");
    std::ofstream(winrt::to_string(part.Path())) << "whole";
    await(part.RenameAsync(L"storage test.pdf", NameCollisionOption::ReplaceExisting));
    EXPECT_EQ(part.Path(), first.Path());
    EXPECT_EQ(contentOf(winrt::to_string(first.Path())), "whole");
    EXPECT_EQ(readAll(reader), "first");
    auto const other = create(L"storage test.part");
    await(other.DeleteAsync());
    EXPECT_FALSE(std::filesystem::exists(path + "/storage test.part"));
}
