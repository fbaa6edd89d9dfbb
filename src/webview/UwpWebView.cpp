#include "webview/UwpWebView.h"

#include <clocale>
#include <deque>

#include "exports/HostChannel.h"
#include "exports/HostMessages.h"
#include "exports/ProcessSettings.h"
#include "webview/LogTexts.h"
#include "webview/Numbers.h"

using xaml::Media::TranslateTransform;
using xaml::Media::VisualTreeHelper;

namespace {

/// Puts the control at (x, y) of the panel that hosts it.
void place(const controls::WebView& control, std::int32_t x, std::int32_t y) {
    TranslateTransform translation;
    translation.X(x);
    translation.Y(y);
    control.RenderTransform(translation);
}

void setSize(const controls::WebView& control, std::int32_t width, std::int32_t height) {
    control.Width(width);
    control.Height(height);
}

/// The panel nearest to the root of the current window's content, or null.
controls::Panel findHostPanel() {
    const auto window = xaml::Window::Current();
    std::deque<xaml::DependencyObject> candidates;
    if (const xaml::DependencyObject content = window ? window.Content() : nullptr) {
        candidates.push_back(content);
    }
    while (!candidates.empty()) {
        const auto candidate = std::move(candidates.front());
        candidates.pop_front();
        if (const auto panel = candidate.try_as<controls::Panel>()) {
            return panel;
        }
        const auto count = VisualTreeHelper::GetChildrenCount(candidate);
        for (std::int32_t i = 0; i < count; ++i) {
            candidates.push_back(VisualTreeHelper::GetChild(candidate, i));
        }
    }
    return nullptr;
}

}  // namespace

UwpWebView::UwpWebView(std::string messageTargetName)
    : pdfLoader(makePdfLoader()), messageTargetName(std::move(messageTargetName)) {
    // Numbers in scripts and payloads have a point as decimal separator.
    std::setlocale(LC_ALL, "C");
}

void UwpWebView::start(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    postToUIThread([weak = weak_from_this(), x, y, width, height] {
        if (const auto self = weak.lock(); self && !self->destroyed) {
            self->buildControl(x, y, width, height);
        }
    });
}

void UwpWebView::buildControl(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    const controls::WebView control;
    // The panel lays the control out at its own corner, so the translation alone says where it stands.
    control.HorizontalAlignment(xaml::HorizontalAlignment::Left);
    control.VerticalAlignment(xaml::VerticalAlignment::Top);
    place(control, x, y);
    if (!processSettings.storageEnabled) {
        control.Settings().IsIndexedDBEnabled(false);
    }
    subscribeToEvents(control);
    webView = control;

    if (const auto panel = findHostPanel()) {
        panel.Children().Append(control);
    } else {
        logError(log_texts::noHostPanel);
    }
    // Last: a size that the platform refuses leaves a control that can be resized.
    setSize(control, width, height);
}

bool UwpWebView::hasControl(const char* operation) const {
    if (!webView) {
        logError(operation + std::string(log_texts::noControl));
        return false;
    }
    return true;
}

void UwpWebView::render() {}

void UwpWebView::resize(std::int32_t width, std::int32_t height) {
    postControlStep(*this, "resize",
                    [width, height](UwpWebView& view) { setSize(view.webView, width, height); });
}

void UwpWebView::setRect(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    postControlStep(*this, "setRect", [x, y, width, height](UwpWebView& view) {
        setSize(view.webView, width, height);
        place(view.webView, x, y);
    });
}

void UwpWebView::setRenderingEnabled(bool) {}

void UwpWebView::setVisible(bool visible) {
    postControlStep(*this, "setVisible", [visible](UwpWebView& view) {
        view.webView.Visibility(visible ? xaml::Visibility::Visible : xaml::Visibility::Collapsed);
    });
}

void UwpWebView::zoomIn() {
    logWarning(log_texts::zoomInDisabled);
}

void UwpWebView::zoomOut() {
    logWarning(log_texts::zoomOutDisabled);
}

std::int32_t UwpWebView::scale(std::int32_t value) const {
    return value;
}

std::int32_t UwpWebView::getHeight() const {
    return truncate(webView.Height());
}

std::int32_t UwpWebView::getWidth() const {
    return truncate(webView.Width());
}

void UwpWebView::domContentLoadedStep() {
    if (destroyed) {
        return;
    }
    domContentLoaded = true;
    sendMessage(messages::loadProgressUpdate, "0.66");
}

foundation::IAsyncAction UwpWebView::teardown() {
    removeControl();
    co_return;
}

void UwpWebView::removeControl() {
    pdfLoader->abandon();
    // The reference goes in any case: XAML objects must not outlive the UI thread's part of the instance.
    const controls::WebView control = std::exchange(webView, nullptr);
    controls::Panel panel{nullptr};
    if (control) {
        try {
            control.Navigate(foundation::Uri(L"about:blank"));
        } catch (...) {
            logUIThreadException();
        }
        panel = control.Parent().try_as<controls::Panel>();
    }
    if (!panel) {
        logError(log_texts::parentIsNoPanel);
        return;
    }
    std::uint32_t index = 0;
    if (panel.Children().IndexOf(control, index)) {
        panel.Children().RemoveAt(index);
    }
}

bool UwpWebView::usesBitmapCapture() const {
    return true;
}

bool UwpWebView::sendMessage(const std::string& methodName, const std::string& payload) const {
    return sendHostMessage(messageTargetName, methodName, payload);
}

void UwpWebView::sendData(const std::string& resultCallbackId, std::span<const std::uint8_t> bytes) const {
    sendDataResult(messageTargetName, resultCallbackId, bytes);
}

void UwpWebView::reportLoadFailure(const std::string& text) const {
    logError(text);
    sendMessage(messages::loadFailed, text);
}
