#include "local_content/FileUriToStreamResolver.h"

#include <algorithm>

#include "exports/Exceptions.h"
#include "exports/HostChannel.h"
#include "local_content/LogTexts.h"
#include "local_content/PdfViewerPage.h"

namespace {

constexpr std::wstring_view viewerPath = L"/pdf";
constexpr std::wstring_view filePath = L"/file/";

foundation::IAsyncOperation<streams::IInputStream> openViewerPage(std::string documentUrl) {
    using namespace winrt::Windows::Security::Cryptography;
    const streams::InMemoryRandomAccessStream page;
    co_await page.WriteAsync(CryptographicBuffer::ConvertStringToBinary(
        winrt::to_hstring(pdfViewerPage(documentUrl)), BinaryStringEncoding::Utf8));
    co_return page.GetInputStreamAt(0);
}

foundation::IAsyncOperation<streams::IInputStream> openFile(std::wstring path) {
    try {
        const auto file = co_await storage::StorageFile::GetFileFromPathAsync(path);
        co_return co_await file.OpenAsync(storage::FileAccessMode::Read);
    } catch (...) {
        logError(log_texts::cannotLoadLocalFile + currentExceptionMessage().value_or("") +
                 ", file path: " + winrt::to_string(path));
        throw;
    }
}

/// The document's URL, or nothing in a request that names none.
std::string requestedDocument(const foundation::Uri& uri) {
    try {
        return winrt::to_string(uri.QueryParsed().GetFirstValueByName(L"pdf"));
    } catch (const winrt::hresult_error&) {
        return {};
    }
}

}  // namespace

foundation::IAsyncOperation<streams::IInputStream> FileUriToStreamResolver::UriToStreamAsync(
    foundation::Uri uri) const {
    const std::wstring path(foundation::Uri::UnescapeComponent(uri.Path()));
    if (path.starts_with(viewerPath)) {
        if (auto document = requestedDocument(uri); !document.empty()) {
            co_return co_await openViewerPage(std::move(document));
        }
    } else if (path.starts_with(filePath)) {
        std::wstring native = path.substr(filePath.size());
        std::ranges::replace(native, L'/', L'\\');
        co_return co_await openFile(std::move(native));
    }
    logError(log_texts::unsupportedLocalUrl + winrt::to_string(uri.AbsoluteUri()));
    throw winrt::hresult_error(E_INVALIDARG, L"The URL names no local content.");
}

winrt::Windows::Web::IUriToStreamResolver sharedResolver() {
    // Never destroyed: when the process ends, the UI thread goes on for a moment.
    struct Kept {
        winrt::Windows::Web::IUriToStreamResolver resolver = winrt::make<FileUriToStreamResolver>();
    };
    static const auto& kept = *new Kept();
    return kept.resolver;
}
