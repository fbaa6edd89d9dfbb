#pragma once

#include <unistd.h>

#include <string>
#include <string_view>
#include <utility>

#include <winrt/base.h>

namespace runtime {

/// An open file.
class file_descriptor {
  public:
    explicit file_descriptor(int descriptor = -1) noexcept : descriptor(descriptor) {}
    file_descriptor(file_descriptor&& other) noexcept : descriptor(std::exchange(other.descriptor, -1)) {}
    file_descriptor& operator=(file_descriptor&& other) noexcept {
        std::swap(descriptor, other.descriptor);
        return *this;
    }
    ~file_descriptor() {
        if (descriptor != -1) {
            close(descriptor);
        }
    }

    int get() const noexcept { return descriptor; }
    explicit operator bool() const noexcept { return descriptor != -1; }

  private:
    int descriptor;
};

/// The failure that stands for an error number of the system.
winrt::hresult_error file_error(int error);

/// The system's form of a path in the platform's; E_INVALIDARG for what is no absolute path.
std::string native_path(std::wstring_view path);

/// A name as UTF-8; E_INVALIDARG for what cannot be a name within a folder.
std::string file_name(std::wstring_view name);

/// Throws when there is no regular file at the path.
void require_regular_file(std::string const& path);

/// Opens a regular file. Anything else is refused; nothing is waited for.
file_descriptor open_regular_file(std::string const& path, int flags);

/// Creates an empty file in a folder, with a number in its name if there is one of that name, and returns its
/// path.
std::string create_file(std::string const& folder, std::string const& name);

/// The program's own folder for temporary files, made if needed; E_ACCESSDENIED when it is not this user's.
std::string temporary_folder();

/// The program's name, as its folders and local addresses have it.
std::string program_name();

}  // namespace runtime
