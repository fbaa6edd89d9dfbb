// URLs of PDF documents: their place in the viewer page, and the file that keeps a document.

#include <algorithm>

#include "fuzz/support/Require.h"
#include "local_content.h"
#include "local_content/LocalUrls.h"
#include "local_content/PdfViewerPage.h"

namespace {

void checkViewerPage(const std::string& url) {
    static const std::string withoutUrl = pdfViewerPage("");
    static const auto place = pdfViewerPage("$PDF_URL_PLACEHOLDER").find("$PDF_URL_PLACEHOLDER");
    std::string page = pdfViewerPage(url);
    require(page.size() >= withoutUrl.size(), "the page around the URL stays whole", readable(url));
    const auto inserted = page.substr(place, page.size() - withoutUrl.size());
    require(page.erase(place, inserted.size()) == withoutUrl, "the page around the URL stays as it is",
            readable(url));
    // It is the text of a script element, and a text in scripts: nothing there that could end either.
    require(std::ranges::all_of(inserted,
                                [](char character) {
                                    return character > ' ' && character < 0x7F &&
                                           std::string_view("\"\\<>`{}|^").find(character) ==
                                               std::string_view::npos;
                                }),
            "the URL cannot leave its place", readable(inserted));
    const auto unescaped = [](std::string_view text) {
        return foundation::Uri::UnescapeComponent(winrt::to_hstring(text));
    };
    const bool isText = winrt::to_string(winrt::to_hstring(url)) == url;
    require(!isText || unescaped(inserted) == unescaped(url), "the URL means the same in the page",
            readable(url) + " as " + readable(inserted));
}

/// The viewer page's address for the document at a path, as local_urls::pdfViewer makes it.
foundation::Uri viewerOf(const winrt::hstring& path) {
    constexpr const wchar_t* identifier = L"ZarvikLocal";
    const auto document = runtime::local_uri(identifier, L"file/" + foundation::Uri::EscapeComponent(path));
    return runtime::local_uri(identifier,
                              L"pdf?pdf=" + foundation::Uri::EscapeComponent(document.AbsoluteUri()));
}

/// From the address of a document's viewer come back the document's address, for the viewer, and the file's,
/// for the engine.
void checkPath(const winrt::hstring& path) {
    const auto viewer = viewerOf(path);
    const auto document = viewer.QueryParsed().GetFirstValueByName(L"pdf");
    const auto served = foundation::Uri::UnescapeComponent(foundation::Uri(document).Path());
    const auto readablePath = readable(winrt::to_string(path));
    require(served == L"/file/" + path, "the viewer asks for the document's path",
            readablePath + " as " + readable(winrt::to_string(served)));
    const std::string reported = local_urls::toReport(winrt::to_string(viewer.AbsoluteUri()), {});
    require(reported.starts_with("file:///"), "a document on disk is reported as a file", readable(reported));
}

void checkFileName(const std::string& url) {
    const auto name = local_urls::pdfFileName(url);
    const auto viewer = viewerOf(L"/tmp/" + winrt::to_hstring(name) + L".pdf");
    require(local_urls::toReport(winrt::to_string(viewer.AbsoluteUri()), {{name, url}}) == url,
            "a document is reported by where it came from", readable(url));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    checkViewerPage(text);
    checkFileName(text);
    checkPath(winrt::to_hstring(text));
    return 0;
}
