#include "exports/HostChannel.h"
#include "exports/HostMessages.h"
#include "exports/ProcessSettings.h"
#include "local_content/FileUriToStreamResolver.h"
#include "local_content/LocalUrls.h"
#include "webview/LogTexts.h"
#include "webview/NavigationRules.h"
#include "webview/UwpWebView.h"

using controls::WebViewPermissionType;

namespace {

/// A page whose process ends sooner than this after it was loaded again is given up.
constexpr std::chrono::minutes recoveryInterval{1};

}  // namespace

/// A delegate that leads to the handler as long as the instance is alive. No failure goes back to the
/// platform, which would end the process.
template <typename Arguments>
auto UwpWebView::whileAlive(void (UwpWebView::*handler)(const Arguments&)) {
    return [weak = weak_from_this(), handler](const controls::WebView&, const Arguments& arguments) {
        const auto self = weak.lock();
        if (!self || self->destroyed) {
            return;
        }
        try {
            (self.get()->*handler)(arguments);
        } catch (...) {
            logUIThreadException();
        }
    };
}

void UwpWebView::subscribeToEvents(const controls::WebView& control) {
    // Never revoked: the subscriptions go with the control, and the control with the instance.
    control.NavigationStarting(whileAlive(&UwpWebView::onNavigationStarting));
    control.ContentLoading(whileAlive(&UwpWebView::onContentLoading));
    control.DOMContentLoaded(whileAlive(&UwpWebView::onDOMContentLoaded));
    control.NavigationCompleted(whileAlive(&UwpWebView::onNavigationCompleted));
    control.NewWindowRequested(whileAlive(&UwpWebView::onNewWindowRequested));
    control.PermissionRequested(whileAlive(&UwpWebView::onPermissionRequested));
    control.SeparateProcessLost(whileAlive(&UwpWebView::onSeparateProcessLost));
}

void UwpWebView::onNavigationStarting(const controls::WebViewNavigationStartingEventArgs& arguments) {
    // A page given as text has no URL on Windows.
    const auto uri = arguments.Uri();
    const std::string url = uri ? winrt::to_string(uri.AbsoluteUri()) : "about:blank";
    if (isPdfUrl(url) && !url.starts_with("ms-local-stream:")) {
        arguments.Cancel(true);
        loadPdf(url);
        return;
    }
    pdfLoader->abandon();
    addPageBridge();
    sendMessage(messages::messageEmitted, urlChangedMessage(local_urls::toReport(url, pdfLoader->sources())));
    sendMessage(messages::loadStarted, "");
}

void UwpWebView::onContentLoading(const controls::WebViewContentLoadingEventArgs&) {
    sendMessage(messages::loadProgressUpdate, "0.33");
    injectPageScripts();
}

void UwpWebView::onDOMContentLoaded(const controls::WebViewDOMContentLoadedEventArgs&) {
    domContentLoadedStep();
}

void UwpWebView::onNavigationCompleted(const controls::WebViewNavigationCompletedEventArgs& arguments) {
    if (arguments.IsSuccess()) {
        sendMessage(messages::loadFinished, "");
    } else {
        const auto status = static_cast<std::int32_t>(arguments.WebErrorStatus());
        reportLoadFailure(log_texts::loadFailed + std::to_string(status));
    }
}

void UwpWebView::onNewWindowRequested(const controls::WebViewNewWindowRequestedEventArgs& arguments) {
    // Everything opens in this same web view.
    arguments.Handled(true);
    const auto uri = arguments.Uri();
    if (!uri) {
        return;
    }
    const auto isLocal = [](const foundation::Uri& of) {
        return of && of.SchemeName() == L"ms-local-stream";
    };
    // Those of the app's own files begin like the local stream's.
    const std::wstring scheme(uri.SchemeName());
    if (scheme != L"file" && !scheme.starts_with(L"ms-")) {
        webView.Navigate(uri);
    } else if (isLocal(uri) && isLocal(webView.Source())) {
        webView.NavigateToLocalStreamUri(uri, sharedResolver());
    } else {
        // What the view opens for a page, it must not open in its own name.
        logError(log_texts::localContentRefused + winrt::to_string(uri.AbsoluteUri()));
    }
}

void UwpWebView::onPermissionRequested(const controls::WebViewPermissionRequestedEventArgs& arguments) {
    const auto request = arguments.PermissionRequest();
    const auto type = request.PermissionType();
    const bool allowed = (type == WebViewPermissionType::Geolocation && processSettings.geolocationEnabled) ||
                         (type == WebViewPermissionType::Media && processSettings.cameraAndMicrophoneEnabled);
    if (allowed) {
        request.Allow();
    } else {
        request.Deny();
    }
}

void UwpWebView::onSeparateProcessLost(const controls::WebViewSeparateProcessLostEventArgs&) {
    // Nothing of the page is left, neither its document nor its agent.
    domContentLoaded = false;
    agentRunning = false;
    const auto now = std::chrono::steady_clock::now();
    if (recovery && now - *recovery < recoveryInterval) {
        reportLoadFailure(log_texts::pageProcessLostAgain);
        return;
    }
    recovery = now;
    reportLoadFailure(log_texts::pageProcessLost);
    webView.Refresh();
}
