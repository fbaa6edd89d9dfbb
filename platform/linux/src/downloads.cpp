#include "downloads.h"

#include <fcntl.h>
#include <libsoup/soup.h>
#include <sys/statvfs.h>
#include <winrt/Windows.Networking.BackgroundTransfer.h>

#include <algorithm>
#include <cerrno>
#include <thread>
#include <vector>

#include "file_system.h"
#include "glib_ptr.h"
#include "implementation.h"
#include "storage_file.h"
#include "user_agent.h"

namespace runtime {

namespace {

using winrt::Windows::Networking::BackgroundTransfer::DownloadOperation;

/// A download, and what the server answered.
struct download_object : winrt::impl::object {
    download_object(std::string uri, std::shared_ptr<storage_file> file)
        : uri(std::move(uri)), file(std::move(file)) {}

    std::string const uri;
    std::shared_ptr<storage_file> const file;
    std::atomic<bool> started = false;
    std::atomic<uint32_t> status = 0;  // none yet
};

struct response_object : winrt::impl::object {
    explicit response_object(uint32_t status) : status(status) {}

    uint32_t const status;
};

/// The operation of a download under way.
struct transfer : winrt::impl::async_object<DownloadOperation> {
    void cancel() override { g_cancellable_cancel(cancellable.get()); }

    gobject_ptr<GCancellable> const cancellable = gobject_ptr<GCancellable>::adopt(g_cancellable_new());
};

/// A main context for a thread's own connections. Without one they would be served by the default context,
/// which is the user-interface thread's.
class own_main_context {
  public:
    own_main_context() { g_main_context_push_thread_default(context.get()); }
    ~own_main_context() { g_main_context_pop_thread_default(context.get()); }
    own_main_context(own_main_context const&) = delete;
    own_main_context& operator=(own_main_context const&) = delete;

  private:
    std::unique_ptr<GMainContext, release_with<g_main_context_unref>> const context{g_main_context_new()};
};

winrt::hresult code_of(GError const& error) {
    struct {
        GQuark (*domain)() = nullptr;
        int code = 0;
        winrt::hresult result;
    } constexpr codes[] = {
        {g_io_error_quark, G_IO_ERROR_CANCELLED, HRESULT_FROM_WIN32(ERROR_CANCELLED)},
        {g_io_error_quark, G_IO_ERROR_TIMED_OUT, WININET_E_TIMEOUT},
        {g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, WININET_E_CANNOT_CONNECT},
        {g_io_error_quark, G_IO_ERROR_HOST_UNREACHABLE, WININET_E_CANNOT_CONNECT},
        {g_io_error_quark, G_IO_ERROR_NETWORK_UNREACHABLE, WININET_E_CANNOT_CONNECT},
        {g_io_error_quark, G_IO_ERROR_PARTIAL_INPUT, WININET_E_CONNECTION_ABORTED},
        {g_io_error_quark, G_IO_ERROR_CONNECTION_CLOSED, WININET_E_CONNECTION_RESET},
        {g_tls_error_quark, G_TLS_ERROR_BAD_CERTIFICATE, WININET_E_INVALID_CA},
        {soup_session_error_quark, SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS, WININET_E_REDIRECT_FAILED},
        {soup_session_error_quark, SOUP_SESSION_ERROR_REDIRECT_NO_LOCATION, WININET_E_REDIRECT_FAILED},
        {soup_session_error_quark, SOUP_SESSION_ERROR_REDIRECT_BAD_URI, WININET_E_REDIRECT_FAILED},
    };
    for (auto const& [domain, code, result] : codes) {
        if (g_error_matches(&error, domain(), code)) {
            return result;
        }
    }
    if (error.domain == G_RESOLVER_ERROR) {
        return WININET_E_NAME_NOT_RESOLVED;
    }
    return error.domain == G_TLS_ERROR ? WININET_E_SECURITY_CHANNEL_ERROR : E_FAIL;
}

winrt::hresult_error transfer_error(glib_error const& error) {
    return {code_of(*error.get()), winrt::to_hstring(error.message())};
}

void write_all(int file, char const* bytes, size_t count) {
    while (count > 0) {
        auto const written = write(file, bytes, count);
        if (written >= 0) {
            bytes += written;
            count -= static_cast<size_t>(written);
        } else if (errno != EINTR) {
            throw file_error(errno);
        }
    }
}

/// A page may ask for a document that never ends, or for one after the other.
void require_free_space(int file) {
    constexpr uint64_t enough = 256 << 20;
    struct statvfs disk{};
    if (fstatvfs(file, &disk) == 0 &&
        disk.f_bavail * disk.f_frsize < std::min(enough, disk.f_blocks * disk.f_frsize / 10)) {
        throw file_error(ENOSPC);
    }
}

void save(GInputStream* body, file_descriptor const& file, GCancellable* cancellable) {
    constexpr size_t piece = 1 << 16;
    std::vector<char> buffer(piece);
    glib_error error;
    while (auto const count =
               g_input_stream_read(body, buffer.data(), buffer.size(), cancellable, error.put())) {
        if (count < 0) {
            throw transfer_error(error);
        }
        require_free_space(file.get());
        write_all(file.get(), buffer.data(), static_cast<size_t>(count));
    }
}

void fetch(download_object& download, GCancellable* cancellable) {
    own_main_context const context;
    auto const session = gobject_ptr<SoupSession>::adopt(soup_session_new_with_options(
        "timeout", download_patience_s.load(), "user-agent", effective_user_agent().c_str(), nullptr));
    auto const message =
        gobject_ptr<SoupMessage>::adopt(soup_message_new(SOUP_METHOD_GET, download.uri.c_str()));
    if (!message) {
        throw winrt::hresult_error(E_INVALIDARG, L"Nothing can be requested from the URI.");
    }
    glib_error error;
    auto const body = gobject_ptr<GInputStream>::adopt(
        soup_session_send(session.get(), message.get(), cancellable, error.put()));
    download.status = soup_message_get_status(message.get());
    if (!body) {
        throw transfer_error(error);
    }
    constexpr uint32_t first_error = 400;
    if (download.status >= first_error) {
        constexpr uint32_t http_error = 0x80190000;
        throw winrt::hresult_error(
            static_cast<int32_t>(http_error | download.status),
            winrt::to_hstring("The server answered with status " + std::to_string(download.status)));
    }
    save(body.get(), open_regular_file(download.file->path(), O_WRONLY | O_TRUNC), cancellable);
}

void run(std::shared_ptr<download_object> const& download, std::shared_ptr<transfer> const& transfer) {
    try {
        fetch(*download, transfer->cancellable.get());
    } catch (...) {
        transfer->fail(std::current_exception());
        return;
    }
    transfer->complete(DownloadOperation(download));
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::Networking::BackgroundTransfer {

using runtime::download_object;
using runtime::implementation_of;

BackgroundDownloader::BackgroundDownloader() : IInspectable(std::make_shared<impl::object>()) {}

DownloadOperation BackgroundDownloader::CreateDownload(Foundation::Uri const& uri,
                                                       Storage::IStorageFile const& resultFile) const {
    if (uri.SchemeName() != L"http" && uri.SchemeName() != L"https") {
        throw hresult_error(E_INVALIDARG, L"Only http and https can be downloaded from.");
    }
    return DownloadOperation(std::make_shared<download_object>(
        to_string(uri.AbsoluteUri()), implementation_of<runtime::storage_file>(resultFile)));
}

Foundation::IAsyncOperationWithProgress<DownloadOperation, DownloadOperation> DownloadOperation::StartAsync()
    const {
    auto const download = implementation_of<download_object>(*this);
    if (download->started.exchange(true)) {
        throw hresult_error(E_ILLEGAL_METHOD_CALL, L"The download has been started already.");
    }
    auto transfer = std::make_shared<runtime::transfer>();
    // A thread of its own, since it waits most of the time; the pool's are few.
    std::thread([download, transfer] { runtime::run(download, transfer); }).detach();
    return Foundation::IAsyncOperationWithProgress<DownloadOperation, DownloadOperation>(transfer);
}

ResponseInformation DownloadOperation::GetResponseInformation() const {
    auto const status = implementation_of<download_object>(*this)->status.load();
    return status == 0 ? ResponseInformation(nullptr)
                       : ResponseInformation(std::make_shared<runtime::response_object>(status));
}

uint32_t ResponseInformation::StatusCode() const {
    return implementation_of<runtime::response_object>(*this)->status;
}

}  // namespace winrt::Windows::Networking::BackgroundTransfer
