#include "exports/Exceptions.h"
#include "exports/HostChannel.h"
#include "exports/HostMessages.h"
#include "local_content/FileUriToStreamResolver.h"
#include "local_content/LocalUrls.h"
#include "webview/LogTexts.h"
#include "webview/NavigationRules.h"
#include "webview/UwpWebView.h"

namespace {

const char* booleanText(bool value) {
    return value ? "true" : "false";
}

http::HttpRequestMessage makeRequest(const std::string& url, const std::string& headerText) {
    const auto [headers, invalidLines] = splitHeaders(headerText);
    for (const std::string& line : invalidLines) {
        logError(log_texts::invalidHeader + line);
    }
    http::HttpRequestMessage request(http::HttpMethod::Get(), foundation::Uri(winrt::to_hstring(url)));
    for (const auto& [name, value] : headers) {
        if (!request.Headers().TryAppendWithoutValidation(winrt::to_hstring(name),
                                                          winrt::to_hstring(value))) {
            logError(std::string(log_texts::invalidHeader).append(name).append(": ").append(value));
        }
    }
    return request;
}

}  // namespace

template <typename Navigation>
void UwpWebView::startLoad(const std::string& url, Navigation navigate) {
    try {
        navigate();
    } catch (...) {
        reportLoadFailure(log_texts::cannotLoadUrl + url + ". " + currentExceptionText());
    }
}

template <typename Step>
void UwpWebView::postLoadStep(const char* operation, Step step) {
    postToUIThread([weak = weak_from_this(), operation, step = std::move(step)] {
        const auto view = weak.lock();
        if (!view || view->destroyed) {
            return;
        }
        if (view->webView) {
            step(*view);
        } else {
            view->reportLoadFailure(operation + std::string(log_texts::noControl));
        }
    });
}

void UwpWebView::loadUrl(std::string url) {
    postLoadStep("loadUrl", [url = std::move(url)](UwpWebView& view) {
        if (isPdfUrl(url)) {
            view.loadPdf(url);
        } else if (url.starts_with("file:")) {
            view.startLoad(url, [&] {
                view.webView.NavigateToLocalStreamUri(
                    local_urls::page(view.webView, foundation::Uri(winrt::to_hstring(url))),
                    sharedResolver());
            });
        } else {
            view.startLoad(url, [&] { view.webView.Navigate(foundation::Uri(winrt::to_hstring(url))); });
        }
    });
}

void UwpWebView::loadPdf(const std::string& url) {
    startLoad(url, [&] { pdfLoader->load(url); });
}

std::shared_ptr<PdfLoader> UwpWebView::makePdfLoader() {
    PdfLoader::View own;
    own.showDocument = [this](const winrt::hstring& path) {
        if (!destroyed) {
            webView.NavigateToLocalStreamUri(local_urls::pdfViewer(webView, path), sharedResolver());
        }
    };
    own.reportLoadFailure = [this](const std::string& reason) {
        if (!destroyed) {
            reportLoadFailure(reason);
        }
    };
    return std::make_shared<PdfLoader>(std::move(own));
}

void UwpWebView::loadUrlWithHeaders(std::string url, std::string headers) {
    postLoadStep("loadUrlWithHeaders", [url = std::move(url), headers](UwpWebView& view) {
        view.startLoad(url, [&] { view.webView.NavigateWithHttpRequestMessage(makeRequest(url, headers)); });
    });
}

void UwpWebView::loadHtml(std::string html) {
    postLoadStep("loadHtml", [html = std::move(html)](UwpWebView& view) {
        view.webView.NavigateToString(winrt::to_hstring(html));
    });
}

void UwpWebView::goBack() {
    postControlStep(*this, "goBack", [](UwpWebView& view) { view.webView.GoBack(); });
}

void UwpWebView::goForward() {
    postControlStep(*this, "goForward", [](UwpWebView& view) { view.webView.GoForward(); });
}

void UwpWebView::reload() {
    postControlStep(*this, "reload", [](UwpWebView& view) { view.webView.Refresh(); });
}

void UwpWebView::stopLoad() {
    postControlStep(*this, "stopLoad", [](UwpWebView& view) {
        view.pdfLoader->stop();
        view.webView.Stop();
    });
}

void UwpWebView::canGoBack() {
    postControlStep(*this, "canGoBack", [](UwpWebView& view) {
        view.sendMessage(messages::canGoBackResult, booleanText(view.webView.CanGoBack()));
    });
}

void UwpWebView::canGoForward() {
    postControlStep(*this, "canGoForward", [](UwpWebView& view) {
        view.sendMessage(messages::canGoForwardResult, booleanText(view.webView.CanGoForward()));
    });
}
