// Input from the engine: each call becomes one line of script for the agent in the page.

#include "webview/PageScripts.h"
#include "webview/UwpWebView.h"

void UwpWebView::click(std::int32_t x, std::int32_t y) {
    setFocused(true);
    executeJavaScript(page_scripts::click(scale(x), scale(y)), "");
}

void UwpWebView::pointerDown(std::int32_t x, std::int32_t y, std::int32_t mouseButton,
                             std::int32_t clickCount) {
    setFocused(true);
    executeJavaScript(page_scripts::pointerDown(scale(x), scale(y), mouseButton, clickCount), "");
}

void UwpWebView::pointerUp(std::int32_t x, std::int32_t y, std::int32_t mouseButton,
                           std::int32_t clickCount) {
    executeJavaScript(page_scripts::pointerUp(scale(x), scale(y), mouseButton, clickCount), "");
}

void UwpWebView::movePointer(std::int32_t x, std::int32_t y, bool pointerLeave) {
    executeJavaScript(page_scripts::movePointer(scale(x), scale(y), pointerLeave), "");
}

void UwpWebView::scroll(std::int32_t deltaX, std::int32_t deltaY) {
    executeJavaScript(page_scripts::scroll(scale(deltaX), scale(deltaY)), "");
}

void UwpWebView::scrollAtPoint(std::int32_t deltaX, std::int32_t deltaY, std::int32_t x, std::int32_t y) {
    executeJavaScript(page_scripts::scrollAtPoint(scale(deltaX), scale(deltaY), scale(x), scale(y)), "");
}

void UwpWebView::sendKey(std::string key) {
    setFocused(true);
    executeJavaScript(page_scripts::sendKey(std::move(key)), "");
}

void UwpWebView::setFocused(bool focused) {
    if (focused && usesBitmapCapture()) {
        postControlStep(*this, "setFocused",
                        [](UwpWebView& view) { view.webView.Focus(xaml::FocusState::Programmatic); });
    }
    executeJavaScript(page_scripts::setFocused(focused), "");
}
