// The exported functions: each copies its arguments and forwards to the web view or to the process-wide
// subsystem. Nothing thrown inside leaves them.

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "exports/Cookies.h"
#include "exports/Exceptions.h"
#include "exports/HostChannel.h"
#include "exports/LogTexts.h"
#include "exports/PointerRegistry.h"
#include "exports/ProcessSettings.h"
#include "exports/UserAgent.h"
#include "exports/ZarvikOrvella.h"
#include "offscreen/EngineTexture.h"
#include "offscreen/Screenshots.h"
#include "offscreen/UwpWebView3D.h"
#include "webview/MixedRealityFocus.h"
#include "webview/UwpWebView.h"

namespace {

/// An owned copy of a text from the engine; null, where it is allowed, means empty.
std::string text(const char* argument) {
    return argument ? argument : "";
}

/// Runs an operation; what escapes it is logged as a failure of the export.
template <typename Operation>
void guarded(const char* exportName, Operation operation) {
    try {
        operation();
    } catch (...) {
        logError(log_texts::exceptionIn + std::string(exportName) + ". " + currentExceptionText());
    }
}

/// Runs an operation of the web view behind the handle; a handle that is no longer valid is ignored.
template <typename Operation>
void withView(const char* exportName, UwpWebView* instance, Operation operation) {
    guarded(exportName, [&] {
        if (const auto view = PointerRegistry::shared().find(instance)) {
            operation(*view);
        }
    });
}

/// Hands a new web view to the engine, or null, with an error line, if its creation failed.
template <typename Create>
UwpWebView* createView(const char* failureText, Create create) {
    try {
        std::shared_ptr<UwpWebView> view = create();
        UwpWebView* const handle = view.get();
        PointerRegistry::shared().add(std::move(view));
        return handle;
    } catch (...) {
        logError(failureText + currentExceptionMessage().value_or(log_texts::unknownException));
    }
    return nullptr;
}

/// How long the destruction of a web view waits for a dispatcher that takes no work.
constexpr std::chrono::milliseconds pauseUntilDispatched{100};

/// Takes the web view apart on the UI thread and then gives up the engine's reference to it. The engine asks
/// only once, so this asks the dispatcher until it takes the work.
foundation::IAsyncAction destroyView(std::shared_ptr<UwpWebView> view) {
    for (bool dispatched = false, logged = false; !dispatched;) {
        try {
            co_await winrt::resume_foreground(uiDispatcher());
            dispatched = true;
        } catch (...) {
            if (!std::exchange(logged, true)) {
                logUIThreadException();
            }
        }
        if (!dispatched) {
            co_await winrt::resume_after(pauseUntilDispatched);
        }
    }
    try {
        co_await view->teardown();
    } catch (...) {
        logUIThreadException();
    }
    PointerRegistry::shared().release(view.get());
}

/// Called by the engine's render thread.
void renderEvent(int eventId) {
    try {
        if (const auto view = PointerRegistry::shared().findByKey(eventId)) {
            view->render();
        }
    } catch (const winrt::hresult_error&) {
        logError(log_texts::renderFailed + currentExceptionText());
    } catch (...) {
        logError(log_texts::renderFailedUnknown);
    }
}

}  // namespace

// Plug-in entry points

void UnityPluginLoad(IUnityInterfaces* interfaces) {
    processSettings.engineInterfaces = interfaces;
}

void UnityPluginUnload() {}

// Creation and destruction

UwpWebView* WebView_new(const char* messageTargetName, int32_t width, int32_t height,
                        ZarvikBool alwaysCapturePreview) {
    return createView(log_texts::newFailed, [&] {
        const auto view =
            std::make_shared<UwpWebView3D>(text(messageTargetName), width, height, alwaysCapturePreview != 0);
        view->start();
        return view;
    });
}

UwpWebView* WebView_newInNative2DMode(const char* messageTargetName, int32_t x, int32_t y, int32_t width,
                                      int32_t height) {
    return createView(log_texts::newInNative2DModeFailed, [&] {
        const auto view = std::make_shared<UwpWebView>(text(messageTargetName));
        view->start(x, y, width, height);
        return view;
    });
}

void WebView_destroy(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) {
        if (view.markDestroyed()) {
            launch("destroying a web view", destroyView(view.shared_from_this()));
        }
    });
}

// Navigation

void WebView_loadUrl(UwpWebView* instance, const char* url) {
    withView(__func__, instance, [&](UwpWebView& view) { view.loadUrl(text(url)); });
}

void WebView_loadUrlWithHeaders(UwpWebView* instance, const char* url, const char* headers) {
    withView(__func__, instance,
             [&](UwpWebView& view) { view.loadUrlWithHeaders(text(url), text(headers)); });
}

void WebView_loadHtml(UwpWebView* instance, const char* html) {
    withView(__func__, instance, [&](UwpWebView& view) { view.loadHtml(text(html)); });
}

void WebView_goBack(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.goBack(); });
}

void WebView_goForward(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.goForward(); });
}

void WebView_reload(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.reload(); });
}

void WebView_stopLoad(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.stopLoad(); });
}

void WebView_canGoBack(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.canGoBack(); });
}

void WebView_canGoForward(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.canGoForward(); });
}

// Scripts

void WebView_executeJavaScript(UwpWebView* instance, const char* javaScript, const char* resultCallbackId) {
    withView(__func__, instance,
             [&](UwpWebView& view) { view.executeJavaScript(text(javaScript), text(resultCallbackId)); });
}

void WebView_setConsoleMessageEventsEnabled(UwpWebView* instance, ZarvikBool enabled) {
    withView(__func__, instance,
             [&](UwpWebView& view) { view.setConsoleMessageEventsEnabled(enabled != 0); });
}

void WebView_setFocusedInputFieldEventsEnabled(UwpWebView* instance, ZarvikBool enabled) {
    withView(__func__, instance,
             [&](UwpWebView& view) { view.setFocusedInputFieldEventsEnabled(enabled != 0); });
}

// Input

void WebView_click(UwpWebView* instance, int32_t x, int32_t y) {
    withView(__func__, instance, [&](UwpWebView& view) { view.click(x, y); });
}

void WebView_pointerDown(UwpWebView* instance, int32_t x, int32_t y, int32_t mouseButton,
                         int32_t clickCount) {
    withView(__func__, instance, [&](UwpWebView& view) { view.pointerDown(x, y, mouseButton, clickCount); });
}

void WebView_pointerUp(UwpWebView* instance, int32_t x, int32_t y, int32_t mouseButton, int32_t clickCount) {
    withView(__func__, instance, [&](UwpWebView& view) { view.pointerUp(x, y, mouseButton, clickCount); });
}

void WebView_movePointer(UwpWebView* instance, int32_t x, int32_t y, ZarvikBool pointerLeave) {
    withView(__func__, instance, [&](UwpWebView& view) { view.movePointer(x, y, pointerLeave != 0); });
}

void WebView_scroll(UwpWebView* instance, int32_t deltaX, int32_t deltaY) {
    withView(__func__, instance, [&](UwpWebView& view) { view.scroll(deltaX, deltaY); });
}

void WebView_scrollAtPoint(UwpWebView* instance, int32_t deltaX, int32_t deltaY, int32_t x, int32_t y) {
    withView(__func__, instance, [&](UwpWebView& view) { view.scrollAtPoint(deltaX, deltaY, x, y); });
}

void WebView_sendKey(UwpWebView* instance, const char* key) {
    withView(__func__, instance, [&](UwpWebView& view) { view.sendKey(text(key)); });
}

void WebView_setFocused(UwpWebView* instance, ZarvikBool focused) {
    withView(__func__, instance, [&](UwpWebView& view) { view.setFocused(focused != 0); });
}

// Keys under which the render callback finds its web view

int32_t WebView_depositPointer(void* pointer) {
    int32_t key = -1;
    guarded(__func__, [&] { key = PointerRegistry::shared().deposit(pointer); });
    return key;
}

void WebView_removePointer(void* pointer) {
    PointerRegistry::shared().remove(pointer);
}

// Rendering, size and texture

void WebView_resize(UwpWebView* instance, int32_t width, int32_t height) {
    withView(__func__, instance, [&](UwpWebView& view) { view.resize(width, height); });
}

void WebView_setRect(UwpWebView* instance, int32_t x, int32_t y, int32_t width, int32_t height) {
    withView(__func__, instance, [&](UwpWebView& view) { view.setRect(x, y, width, height); });
}

void WebView_setRenderingEnabled(UwpWebView* instance, ZarvikBool enabled) {
    withView(__func__, instance, [&](UwpWebView& view) { view.setRenderingEnabled(enabled != 0); });
}

void WebView_setVisible(UwpWebView* instance, ZarvikBool visible) {
    withView(__func__, instance, [&](UwpWebView& view) { view.setVisible(visible != 0); });
}

void WebView_zoomIn(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.zoomIn(); });
}

void WebView_zoomOut(UwpWebView* instance) {
    withView(__func__, instance, [](UwpWebView& view) { view.zoomOut(); });
}

ZarvikRenderFunction WebView_getRenderFunction() {
    return renderEvent;
}

void WebView_destroyTexture(void* texturePointer) {
    guarded(__func__, [&] { destroyTexture(texturePointer); });
}

void WebView_captureScreenshot(UwpWebView* instance, const char* resultCallbackId) {
    withView(__func__, instance, [&](UwpWebView& view) {
        launch("capturing a screenshot", captureScreenshot(view.shared_from_this(), text(resultCallbackId)));
    });
}

void WebView_getRawTextureData(UwpWebView* instance, const char* resultCallbackId) {
    withView(__func__, instance, [&](UwpWebView& view) {
        launch("getting the raw texture data",
               getRawTextureData(view.shared_from_this(), text(resultCallbackId)));
    });
}

void WebView_setDefaultBackgroundEnabled(UwpWebView* instance, ZarvikBool enabled) {
    withView(__func__, instance, [&](UwpWebView& view) { view.setDefaultBackgroundEnabled(enabled != 0); });
}

// Cookies, storage and user agent

char* WebView_getCookies(const char* url, const char* cookieName) {
    char* answer = nullptr;
    guarded(__func__, [&] {
        const std::string found = cookies::get(text(url), text(cookieName));
        answer = static_cast<char*>(std::malloc(found.size() + 1));
        if (answer) {
            std::memcpy(answer, found.c_str(), found.size() + 1);
        }
    });
    return answer;
}

ZarvikBool WebView_setCookie(const char* cookieJson) {
    bool succeeded = false;
    guarded(__func__, [&] { succeeded = cookies::set(text(cookieJson)); });
    return succeeded;
}

void WebView_deleteCookies(const char* url, const char* cookieName) {
    guarded(__func__, [&] { cookies::remove(text(url), text(cookieName)); });
}

void WebView_clearAllData() {
    guarded(__func__, [] { launch("clearing all data", controls::WebView::ClearTemporaryWebDataAsync()); });
}

void WebView_setStorageEnabled(ZarvikBool enabled) {
    processSettings.storageEnabled = enabled != 0;
}

void WebView_globallySetUserAgent(const char* userAgent) {
    guarded(__func__, [&] { user_agent::set(text(userAgent)); });
}

void WebView_globallySetUserAgentToMobile(ZarvikBool mobile) {
    guarded(__func__, [&] { user_agent::setToMobile(mobile != 0); });
}

// Callbacks, settings and diagnostics

void WebView_setSendMessageFunction(ZarvikSendMessageFunction sendMessage) {
    setSendMessageFunction(sendMessage);
}

void WebView_setDataResultCallback(ZarvikDataResultCallback callback) {
    setDataResultCallback(callback);
}

void WebView_setLogFunctions(ZarvikLogFunction info, ZarvikLogFunction warning, ZarvikLogFunction error) {
    setLogFunctions(info, warning, error);
}

void WebView_logVersionInfo() {
    logInfo(log_texts::versionInfo);
}

void WebView_setCameraAndMicrophoneEnabled(ZarvikBool enabled) {
    processSettings.cameraAndMicrophoneEnabled = enabled != 0;
}

void WebView_setGeolocationEnabled(ZarvikBool enabled) {
    processSettings.geolocationEnabled = enabled != 0;
}

void WebView_handleMixedRealityAppFocusChanged(ZarvikBool focused) {
    guarded(__func__, [&] {
        postToUIThread([focused = focused != 0] { handleMixedRealityAppFocusChanged(focused); });
    });
}
