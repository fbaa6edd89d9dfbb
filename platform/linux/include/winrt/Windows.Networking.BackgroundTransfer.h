#pragma once

#include <winrt/Windows.Storage.h>

namespace winrt::Windows::Networking::BackgroundTransfer {

/// What a server answered.
struct ResponseInformation : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(ResponseInformation, IInspectable)

    /// The HTTP status.
    uint32_t StatusCode() const;
};

/// One download, started once. Any thread.
struct DownloadOperation : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(DownloadOperation, IInspectable)

    /// Downloads into the file. Redirects are followed. Fails with 0x80190000 + status when the server
    /// answers with a status of 400 or more, ERROR_CANCELLED when it was cancelled, and a WININET_E_ code
    /// when there is no valid connection, the answer is cut short, or no byte comes for a minute.
    ///
    /// The body is written as it comes: after a failure the file holds any part of it. So download under a
    /// name that nobody looks for, and rename the file when the operation has succeeded.
    Foundation::IAsyncOperationWithProgress<DownloadOperation, DownloadOperation> StartAsync() const;

    /// The last answer, also of a failed download; null when there was none.
    ResponseInformation GetResponseInformation() const;
};

/// Fetches from http and https into files. Any thread.
struct BackgroundDownloader : Foundation::IInspectable {
    BackgroundDownloader();
    WINRT_LINUX_HANDLE(BackgroundDownloader, IInspectable)

    /// E_INVALIDARG for other schemes.
    DownloadOperation CreateDownload(Foundation::Uri const& uri,
                                     Storage::IStorageFile const& resultFile) const;
};

}  // namespace winrt::Windows::Networking::BackgroundTransfer
