#include "file_system.h"

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

#include "glib_ptr.h"

namespace runtime {

namespace {

winrt::hresult code_of(int error) {
    struct {
        int error = 0;
        winrt::hresult code;
    } constexpr codes[] = {
        {ENOENT, HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND)},
        {ENOTDIR, HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND)},
        {EMFILE, HRESULT_FROM_WIN32(ERROR_TOO_MANY_OPEN_FILES)},
        {ENFILE, HRESULT_FROM_WIN32(ERROR_TOO_MANY_OPEN_FILES)},
        {EACCES, E_ACCESSDENIED},
        {EPERM, E_ACCESSDENIED},
        {EROFS, E_ACCESSDENIED},
        {EISDIR, E_ACCESSDENIED},
        {EXDEV, HRESULT_FROM_WIN32(ERROR_NOT_SAME_DEVICE)},
        {EBUSY, HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION)},
        {ETXTBSY, HRESULT_FROM_WIN32(ERROR_SHARING_VIOLATION)},
        {ENOSPC, HRESULT_FROM_WIN32(ERROR_DISK_FULL)},
        {EDQUOT, HRESULT_FROM_WIN32(ERROR_DISK_FULL)},
        {EEXIST, HRESULT_FROM_WIN32(ERROR_ALREADY_EXISTS)},
        {ENAMETOOLONG, HRESULT_FROM_WIN32(ERROR_FILENAME_EXCED_RANGE)},
        {EIO, HRESULT_FROM_WIN32(ERROR_IO_DEVICE)},
        {ELOOP, HRESULT_FROM_WIN32(ERROR_CANT_RESOLVE_FILENAME)},
        {ENOMEM, E_OUTOFMEMORY},
        {EINVAL, E_INVALIDARG},
    };
    auto const* const found = std::ranges::find(codes, error, [](auto const& entry) { return entry.error; });
    return found == std::end(codes) ? winrt::hresult(E_FAIL) : found->code;
}

void require_regular(struct stat const& status) {
    if (S_ISDIR(status.st_mode)) {
        throw winrt::hresult_error(E_ACCESSDENIED, L"It is a folder, not a file.");
    }
    if (!S_ISREG(status.st_mode)) {
        throw winrt::hresult_error(E_ACCESSDENIED, L"It is not a regular file.");
    }
}

bool is_separator(char character) {
    return character == '/' || character == '\\';
}

}  // namespace

winrt::hresult_error file_error(int error) {
    return {code_of(error), winrt::to_hstring(g_strerror(error))};
}

std::string native_path(std::wstring_view path) {
    std::string const text = winrt::to_string(path);
    std::string native;
    for (auto begin = text.begin(); begin != text.end();) {
        begin = std::find_if_not(begin, text.end(), is_separator);
        auto const end = std::find_if(begin, text.end(), is_separator);
        std::string_view const part(begin, end);
        if (part == "." || part == ".." || part.find('\0') != std::string_view::npos) {
            throw winrt::hresult_error(E_INVALIDARG, L"The path has a part that is not the name of a file.");
        }
        if (!part.empty()) {
            native.append("/").append(part);
        }
        begin = end;
    }
    if (native.empty()) {
        throw winrt::hresult_error(E_INVALIDARG, L"The path is empty.");
    }
    return native;
}

std::string file_name(std::wstring_view name) {
    std::string text = winrt::to_string(name);
    if (text.empty() || text == "." || text == ".." || text.find('\0') != std::string::npos ||
        std::ranges::any_of(text, is_separator)) {
        throw winrt::hresult_error(E_INVALIDARG, L"It is not the name of a file.");
    }
    return text;
}

void require_regular_file(std::string const& path) {
    struct stat status{};
    if (stat(path.c_str(), &status) != 0) {
        throw file_error(errno);
    }
    require_regular(status);
}

file_descriptor open_regular_file(std::string const& path, int flags) {
    // Opening a device may do something to it, so the file's kind is looked at before as well as after.
    require_regular_file(path);
    file_descriptor file(open(path.c_str(), flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status{};
    if (!file || fstat(file.get(), &status) != 0) {
        throw file_error(errno);
    }
    require_regular(status);
    return file;
}

std::string create_file(std::string const& folder, std::string const& name) {
    constexpr int most = 1000;
    auto const ending = std::min(name.rfind('.'), name.size());
    for (int number = 1; number <= most; ++number) {
        auto path = folder + '/' + name;
        if (number > 1) {
            path.insert(folder.size() + 1 + ending, " (" + std::to_string(number) + ')');
        }
        if (file_descriptor(open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, S_IRUSR | S_IWUSR))) {
            return path;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    throw file_error(errno);
}

std::string temporary_folder() {
    constexpr int only_this_user = 0700;
    glib_text const path(
        g_build_filename(g_get_user_cache_dir(), program_name().c_str(), "temporary", nullptr));
    if (g_mkdir_with_parents(path.get(), only_this_user) != 0) {
        throw file_error(errno);
    }
    file_descriptor const folder(open(path.get(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status{};
    if (!folder || fstat(folder.get(), &status) != 0) {
        throw file_error(errno);
    }
    if (status.st_uid != geteuid()) {
        throw winrt::hresult_error(E_ACCESSDENIED, L"The folder for temporary files is another user's.");
    }
    if (fchmod(folder.get(), only_this_user) != 0) {
        throw file_error(errno);
    }
    return path.get();
}

std::string program_name() {
    char const* const name = g_get_prgname();
    return name ? name : "webview";
}

}  // namespace runtime
