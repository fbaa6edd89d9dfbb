#pragma once

#include <winrt/Windows.Storage.Streams.h>

namespace winrt::Windows::Storage {

enum class FileAccessMode : int32_t { Read = 0 };

enum class CreationCollisionOption : int32_t { GenerateUniqueName = 0 };

enum class NameCollisionOption : int32_t { ReplaceExisting = 1 };

/// A regular file. The object follows the file through its own moves and renames. Any thread.
///
/// Operations fail with the platform's code of the matching file system error (0x80070002 for a file that is
/// not there, E_ACCESSDENIED for one that may not be read or is no regular file, and so on) and a text that
/// tells the reason.
struct IStorageFile : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(IStorageFile, IInspectable)

    /// The path as the system has it.
    hstring Path() const;

    /// A stream that reads the file as it is at the time of each read.
    Foundation::IAsyncOperation<Streams::IRandomAccessStream> OpenAsync(FileAccessMode accessMode) const;

    /// Gives the file another name within its folder, in one step, in the place of what has that name.
    /// Whoever has that one open keeps it. E_INVALIDARG for what is no name.
    Foundation::IAsyncAction RenameAsync(param::hstring const& desiredName, NameCollisionOption option) const;

    Foundation::IAsyncAction DeleteAsync() const;
};

struct StorageFile : IStorageFile {
    WINRT_LINUX_HANDLE(StorageFile, IStorageFile)

    /// The file behind an absolute path. Both slashes separate its parts, and the one in front may be
    /// missing; E_INVALIDARG for a path with dot segments. Symbolic links are followed.
    static Foundation::IAsyncOperation<StorageFile> GetFileFromPathAsync(param::hstring const& path);
};

struct StorageFolder : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(StorageFolder, IInspectable)

    hstring Path() const;

    /// A new, empty file that only this user may read. When there is one with the name already, a number
    /// makes the name unique. E_INVALIDARG for what is no name.
    Foundation::IAsyncOperation<StorageFile> CreateFileAsync(param::hstring const& desiredName,
                                                             CreationCollisionOption options) const;
};

/// The folders that belong to the program, for this user.
struct ApplicationData : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(ApplicationData, IInspectable)

    static ApplicationData Current();

    /// A folder for what may be deleted at any time; only this user has access to it.
    StorageFolder TemporaryFolder() const;
};

}  // namespace winrt::Windows::Storage
