#include "local_content/PdfLoader.h"

#include "exports/Exceptions.h"
#include "exports/HostChannel.h"
#include "local_content/LogTexts.h"
#include "webview/UIThread.h"

using winrt::Windows::Networking::BackgroundTransfer::BackgroundDownloader;
using winrt::Windows::Networking::BackgroundTransfer::DownloadOperation;

/// One download, shared by the coroutines that run it and the loader that may end it.
struct PdfLoader::Download {
    explicit Download(std::string url) : url(std::move(url)) {}

    /// Also ends a transfer that is about to start.
    void cancel() {
        cancelled = true;
        try {
            if (transfer) {
                transfer.Cancel();
            }
        } catch (...) {
            // Then it goes on, but whoever gives it up must be able to.
            logUIThreadException();
        }
    }

    /// Fetches the document and gives the HTTP status. Below 300 the whole document is then at `path`;
    /// otherwise, or if this throws, what was there before still is.
    static foundation::IAsyncOperation<std::uint32_t> fetch(std::shared_ptr<Download> self);

    const std::string url;
    winrt::hstring path;
    /// Nobody waits for the document any more.
    bool abandoned = false;

  private:
    static foundation::IAsyncOperation<std::uint32_t> receive(std::shared_ptr<Download> self,
                                                              storage::StorageFile into);

    bool cancelled = false;
    foundation::IAsyncOperationWithProgress<DownloadOperation, DownloadOperation> transfer{nullptr};
};

namespace {

/// Statuses from here on bring no document.
constexpr std::uint32_t firstRefusal = 300;

foundation::IAsyncAction discard(storage::StorageFile file) {
    try {
        co_await file.DeleteAsync();
    } catch (...) {
        logError(log_texts::cannotDiscardDownload + winrt::to_string(file.Path()) + ". " +
                 currentExceptionText());
    }
}

std::string withStatus(const std::string& url, const char* what, std::uint32_t status) {
    return log_texts::pdfDownload + url + what + std::to_string(status);
}

}  // namespace

foundation::IAsyncOperation<std::uint32_t> PdfLoader::Download::fetch(std::shared_ptr<Download> self) {
    const auto name = winrt::to_hstring(local_urls::pdfFileName(self->url) + ".pdf");
    const auto folder = storage::ApplicationData::Current().TemporaryFolder();
    // Under another name at first, so that nobody meets a part of it under its own.
    const auto file = co_await folder.CreateFileAsync(name + L".part",
                                                      storage::CreationCollisionOption::GenerateUniqueName);
    std::uint32_t status = firstRefusal;
    std::exception_ptr failure;
    try {
        status = co_await receive(self, file);
        if (status < firstRefusal) {
            co_await file.RenameAsync(name, storage::NameCollisionOption::ReplaceExisting);
            self->path = file.Path();
        }
    } catch (...) {
        failure = std::current_exception();
    }
    if (self->path.empty()) {
        co_await discard(file);
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
    co_return status;
}

foundation::IAsyncOperation<std::uint32_t> PdfLoader::Download::receive(std::shared_ptr<Download> self,
                                                                        storage::StorageFile into) {
    if (self->cancelled) {
        throw winrt::hresult_error(HRESULT_FROM_WIN32(ERROR_CANCELLED));
    }
    const auto download =
        BackgroundDownloader().CreateDownload(foundation::Uri(winrt::to_hstring(self->url)), into);
    self->transfer = download.StartAsync();
    try {
        co_await self->transfer;
    } catch (const winrt::hresult_error&) {
        // To the platform a refusal is a failed transfer.
        const auto response = download.GetResponseInformation();
        if (!response || response.StatusCode() < firstRefusal) {
            throw;
        }
    }
    co_return download.GetResponseInformation().StatusCode();
}

void PdfLoader::load(const std::string& url) {
    abandon();
    if (url.starts_with("file:")) {
        // Without the slash in front, which no drive has.
        const auto path = foundation::Uri::UnescapeComponent(foundation::Uri(winrt::to_hstring(url)).Path());
        view.showDocument(winrt::hstring(std::wstring_view(path).substr(path.empty() ? 0 : 1)));
    } else if (url.starts_with("http:") || url.starts_with("https:")) {
        current = std::make_shared<Download>(url);
        launch("downloading a PDF", run(weak_from_this(), current));
    } else {
        view.reportLoadFailure(log_texts::unsupportedPdfScheme + url);
    }
}

void PdfLoader::abandon() {
    if (const auto download = std::exchange(current, nullptr)) {
        download->abandoned = true;
        download->cancel();
    }
}

void PdfLoader::stop() {
    if (current) {
        current->cancel();
    }
}

foundation::IAsyncAction PdfLoader::run(std::weak_ptr<PdfLoader> loader, std::shared_ptr<Download> download) {
    const std::string& url = download->url;
    std::uint32_t status = 0;
    std::string failure;
    try {
        status = co_await Download::fetch(download);
    } catch (const winrt::hresult_error&) {
        failure = log_texts::pdfDownloadFailed + url + ". Error message: " + *currentExceptionMessage();
    } catch (...) {
        failure = log_texts::pdfDownloadFailedUnexpectedly + url;
    }
    const auto self = loader.lock();
    if (!self || download->abandoned) {
        co_return;
    }
    self->current = nullptr;
    if (failure.empty() && status >= firstRefusal) {
        failure = withStatus(url, " failed with status code: ", status);
    }
    if (!failure.empty()) {
        self->view.reportLoadFailure(failure);
        co_return;
    }
    if (status != 200) {
        logError(withStatus(url, " finished with status code: ", status));
    }
    self->show(*download);
}

void PdfLoader::show(const Download& download) {
    pdfSources.insert_or_assign(local_urls::pdfFileName(download.url), download.url);
    try {
        view.showDocument(download.path);
    } catch (...) {
        view.reportLoadFailure(log_texts::cannotShowPdf + download.url + ". " + currentExceptionText());
    }
}
