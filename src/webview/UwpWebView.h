#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>

#include "local_content/PdfLoader.h"
#include "platform.h"
#include "webview/UIThread.h"

/// One web view: it owns one XAML WebView control and reports its events under messageTargetName. By itself
/// it is the native 2D mode, in which the control stands in the app's window at a rectangle that the engine
/// sets.
///
/// Owned by the PointerRegistry on the engine's behalf until its teardown has finished, and meanwhile by
/// every operation in progress. Operations are called on the engine's thread, copy their arguments, post
/// their work to the UI thread and return. The control is made, used and released on the UI thread only. A
/// posted step or an event handler does nothing once the instance is destroyed.
class UwpWebView : public std::enable_shared_from_this<UwpWebView> {
  public:
    explicit UwpWebView(std::string messageTargetName);
    UwpWebView(const UwpWebView&) = delete;
    UwpWebView& operator=(const UwpWebView&) = delete;

    // The virtual operations, in slot order.

    /// The engine's render event. Render thread.
    virtual void render();
    virtual void resize(std::int32_t width, std::int32_t height);
    virtual void setRect(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
    virtual void setRenderingEnabled(bool enabled);
    virtual void setVisible(bool visible);
    virtual void zoomIn();
    virtual void zoomOut();
    /// Engine coordinates to page pixels.
    virtual std::int32_t scale(std::int32_t value) const;
    /// The control's size in page pixels. UI thread.
    virtual std::int32_t getHeight() const;
    virtual std::int32_t getWidth() const;
    /// UI thread.
    virtual void domContentLoadedStep();
    /// Stops the page and takes the control out of the window; the control is released. UI thread.
    virtual foundation::IAsyncAction teardown();
    /// Whether the control may be given the keyboard focus.
    virtual bool usesBitmapCapture() const;
    virtual ~UwpWebView() = default;

    /// Posts the making of the control at this rectangle; called once, before anything else.
    void start(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);

    /// Marks the instance as destroyed; false if it was already.
    bool markDestroyed() { return !destroyed.exchange(true); }
    bool isDestroyed() const { return destroyed; }

    /// Null before the control is made, when that failed, and after the teardown. UI thread.
    const controls::WebView& control() const { return webView; }

    // Navigation.
    void loadUrl(std::string url);
    void loadUrlWithHeaders(std::string url, std::string headers);
    void loadHtml(std::string html);
    void goBack();
    void goForward();
    void reload();
    void stopLoad();
    void canGoBack();
    void canGoForward();

    // Scripts.
    /// Runs a script in the page. With a callback id its result, or what it threw, is sent as text in
    /// "HandleJavaScriptResult"; exactly one answer comes as long as the instance is not destroyed.
    void executeJavaScript(std::string script, const std::string& resultCallbackId);
    void setConsoleMessageEventsEnabled(bool enabled);
    void setFocusedInputFieldEventsEnabled(bool enabled);
    /// Takes effect at the next page load.
    void setDefaultBackgroundEnabled(bool enabled) { defaultBackgroundEnabled = enabled; }

    // Input, in engine coordinates. Pressing and typing give the view the focus.
    void click(std::int32_t x, std::int32_t y);
    void pointerDown(std::int32_t x, std::int32_t y, std::int32_t mouseButton, std::int32_t clickCount);
    void pointerUp(std::int32_t x, std::int32_t y, std::int32_t mouseButton, std::int32_t clickCount);
    void movePointer(std::int32_t x, std::int32_t y, bool pointerLeave);
    void scroll(std::int32_t deltaX, std::int32_t deltaY);
    void scrollAtPoint(std::int32_t deltaX, std::int32_t deltaY, std::int32_t x, std::int32_t y);
    void sendKey(std::string key);
    void setFocused(bool focused);

    // Messages to the engine, on any thread.
    bool sendMessage(const std::string& methodName, const std::string& payload) const;
    void sendData(const std::string& resultCallbackId, std::span<const std::uint8_t> bytes) const;
    /// Logs why a page cannot be loaded and sends it as "HandleLoadFailed".
    void reportLoadFailure(const std::string& text) const;

  protected:
    /// Posts a step that works on the control of a live instance of the caller's class.
    template <typename View, typename Step>
    static void postControlStep(View& view, const char* operation, Step step);

    std::atomic<bool> domContentLoaded{false};
    std::atomic<bool> destroyed{false};
    controls::WebView webView{nullptr};

  private:
    void buildControl(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height);
    void subscribeToEvents(const controls::WebView& control);
    void removeControl();
    bool hasControl(const char* operation) const;
    /// Posts a step that loads something; without a control the load has failed.
    template <typename Step>
    void postLoadStep(const char* operation, Step step);
    /// Shows a PDF document, local or from the network. UI thread.
    void loadPdf(const std::string& url);
    std::shared_ptr<PdfLoader> makePdfLoader();
    /// Runs a navigation; what the platform refuses is reported as a failed load of the URL.
    template <typename Navigation>
    void startLoad(const std::string& url, Navigation navigate);

    // The page's side. UI thread.
    /// Puts the object into the page about to load through which it sends messages.
    void addPageBridge();
    void injectPageScripts();
    /// Starts the agent in the frames that ask for it.
    static foundation::IAsyncAction startFrameAgents(std::shared_ptr<UwpWebView> view);
    void onPageMessage(const std::string& message);
    void applyBackground(bool transparent);
    void runScript(const std::string& script, const std::string& resultCallbackId);
    static foundation::IAsyncAction invokeScript(std::shared_ptr<UwpWebView> view, winrt::hstring script,
                                                 std::string resultCallbackId);

    // Handlers of the control's events. UI thread.
    void onNavigationStarting(const controls::WebViewNavigationStartingEventArgs& arguments);
    void onContentLoading(const controls::WebViewContentLoadingEventArgs& arguments);
    void onDOMContentLoaded(const controls::WebViewDOMContentLoadedEventArgs& arguments);
    void onNavigationCompleted(const controls::WebViewNavigationCompletedEventArgs& arguments);
    void onNewWindowRequested(const controls::WebViewNewWindowRequestedEventArgs& arguments);
    void onPermissionRequested(const controls::WebViewPermissionRequestedEventArgs& arguments);
    void onSeparateProcessLost(const controls::WebViewSeparateProcessLostEventArgs& arguments);
    template <typename Arguments>
    auto whileAlive(void (UwpWebView::*handler)(const Arguments&));

    /// Whether a page has had its agent started, or is just about to.
    std::atomic<bool> agentRunning{false};
    std::atomic<bool> consoleMessageEventsEnabled{false};
    std::atomic<bool> defaultBackgroundEnabled{true};
    std::atomic<bool> focusedInputFieldEventsEnabled{false};
    const std::shared_ptr<PdfLoader> pdfLoader;
    /// What frames of a page ask for. UI thread.
    struct FrameAgents {
        bool wanted = false;
        bool starting = false;
    };
    /// Of the page that is shown: what an earlier one still asks for does not hold it up.
    std::shared_ptr<FrameAgents> frameAgents = std::make_shared<FrameAgents>();
    /// When the page was last loaded again because its process had ended. UI thread.
    std::optional<std::chrono::steady_clock::time_point> recovery;
    const std::string messageTargetName;
};

template <typename View, typename Step>
void UwpWebView::postControlStep(View& view, const char* operation, Step step) {
    const auto self = std::static_pointer_cast<View>(view.shared_from_this());
    postToUIThread([weak = std::weak_ptr<View>(self), operation, step = std::move(step)] {
        const auto view = weak.lock();
        if (view && !view->destroyed && view->hasControl(operation)) {
            step(*view);
        }
    });
}
