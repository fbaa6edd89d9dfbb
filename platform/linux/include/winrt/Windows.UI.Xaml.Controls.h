#pragma once

#include <winrt/Windows.Foundation.Collections.h>
#include <winrt/Windows.Storage.Streams.h>
#include <winrt/Windows.UI.Xaml.h>
#include <winrt/Windows.UI.h>
#include <winrt/Windows.Web.Http.h>
#include <winrt/Windows.Web.h>

namespace winrt::Windows::UI::Xaml::Controls {

/// The children of a panel.
struct UIElementCollection : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(UIElementCollection, IInspectable)

    bool IndexOf(UIElement const& value, uint32_t& index) const;
    void Append(UIElement const& value) const;
    void RemoveAt(uint32_t index) const;
};

struct Panel : FrameworkElement {
    WINRT_LINUX_HANDLE(Panel, FrameworkElement)

    UIElementCollection Children() const;
};

enum class WebViewPermissionType : int32_t {
    Geolocation = 0,
    Media = 2,
    PointerLock = 3,
    WebNotifications = 4
};

struct WebViewPermissionRequest : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewPermissionRequest, IInspectable)

    WebViewPermissionType PermissionType() const;
    void Allow() const;
    void Deny() const;
};

struct WebViewPermissionRequestedEventArgs : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewPermissionRequestedEventArgs, IInspectable)

    WebViewPermissionRequest PermissionRequest() const;
};

/// Says nothing more.
struct WebViewSeparateProcessLostEventArgs : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewSeparateProcessLostEventArgs, IInspectable)
};

struct WebViewNavigationStartingEventArgs : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewNavigationStartingEventArgs, IInspectable)

    Foundation::Uri Uri() const;
    void Cancel(bool value) const;
};

struct WebViewContentLoadingEventArgs : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewContentLoadingEventArgs, IInspectable)
};

struct WebViewDOMContentLoadedEventArgs : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewDOMContentLoadedEventArgs, IInspectable)
};

struct WebViewNavigationCompletedEventArgs : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewNavigationCompletedEventArgs, IInspectable)

    bool IsSuccess() const;
    Web::WebErrorStatus WebErrorStatus() const;
};

struct WebViewNewWindowRequestedEventArgs : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewNewWindowRequestedEventArgs, IInspectable)

    Foundation::Uri Uri() const;
    void Handled(bool value) const;
};

struct WebViewSettings : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(WebViewSettings, IInspectable)

    void IsIndexedDBEnabled(bool value) const;
};

/// A browser view. Navigation events tell of the top document only, never of its frames or of moves within
/// the document, and always in the order starting, content loading, DOM content loaded, completed. A
/// navigation that another one replaces is completed as cancelled before the other one starts.
struct WebView : FrameworkElement {
    WebView();
    WINRT_LINUX_HANDLE(WebView, FrameworkElement)

    template <typename Arguments>
    using handler = Foundation::TypedEventHandler<WebView, Arguments>;

    event_token NavigationStarting(handler<WebViewNavigationStartingEventArgs> const& handler) const;
    event_token ContentLoading(handler<WebViewContentLoadingEventArgs> const& handler) const;
    event_token DOMContentLoaded(handler<WebViewDOMContentLoadedEventArgs> const& handler) const;
    event_token NavigationCompleted(handler<WebViewNavigationCompletedEventArgs> const& handler) const;
    event_token NewWindowRequested(handler<WebViewNewWindowRequestedEventArgs> const& handler) const;
    event_token PermissionRequested(handler<WebViewPermissionRequestedEventArgs> const& handler) const;
    /// The page's process has ended by itself. What was under way has failed by then.
    event_token SeparateProcessLost(handler<WebViewSeparateProcessLostEventArgs> const& handler) const;

    WebViewSettings Settings() const;

    /// Gives the page the keyboard focus, which the view that had it loses.
    bool Focus(FocusState value) const;

    bool CanGoBack() const;
    bool CanGoForward() const;
    /// The address of the page that is shown; null before the first one.
    Foundation::Uri Source() const;

    /// E_INVALIDARG for scripts, and for local addresses: those need a resolver.
    void Navigate(Foundation::Uri const& source) const;

    /// The address of local content: `ms-local-stream://<program>_<identifier in hexadecimal>/<path>`.
    /// Content under different identifiers is of different origins, which do not reach each other.
    Foundation::Uri BuildLocalStreamUri(param::hstring const& contentIdentifier,
                                        param::hstring const& relativePath) const;

    /// Navigates to a local address; the resolver gives the page, all that the page asks for at its own
    /// origin, and the same again for the history and reloads. A resolver's failure is a load error: 404 when
    /// something was not found, 403 when it may not be had, 500 otherwise.
    ///
    /// The engine's media elements play nothing from local addresses; a page can fetch what it wants to play
    /// and give them a blob.
    ///
    /// Only this call, the history, reloads and the content's own pages lead to local content. Pages of other
    /// origins neither read nor show nor reach it; nor does a view that was not navigated in this way. Of the
    /// new windows that pages ask for, those with local addresses are told of only when a link leads there.
    void NavigateToLocalStreamUri(Foundation::Uri const& source,
                                  Web::IUriToStreamResolver const& streamResolver) const;

    void NavigateToString(param::hstring const& text) const;
    void NavigateWithHttpRequestMessage(Web::Http::HttpRequestMessage const& requestMessage) const;
    void GoBack() const;
    void GoForward() const;
    void Refresh() const;
    void Stop() const;

    /// Calls a global function of the top document with texts, or evaluates the one text when the function is
    /// `eval`, and yields the text that it returns; an empty text when it returns anything else (promises are
    /// not awaited). Calls run and end in the order in which they are made.
    ///
    /// Fails with 0x80020101 and the error's text when the script throws, DISP_E_UNKNOWNNAME when there is no
    /// such function, E_ILLEGAL_METHOD_CALL when no page is loaded, E_ABORT when another page comes before
    /// the answer, and RPC_E_DISCONNECTED when the page's process or the view ends before it.
    ///
    /// Works the same in pages that forbid evaluation: during the call, and only then, `eval` works for the
    /// called function. There each evaluated text has a scope of its own for `let`, `const` and `class`.
    Foundation::IAsyncOperation<hstring> InvokeScriptAsync(
        param::hstring const& scriptName, param::async_iterable<hstring> const& arguments) const;

    /// Gives the page that the next navigation brings an object, as a property of its `window` that its own
    /// scripts find when they start and cannot change. To be called while NavigationStarting is raised.
    /// Frames and later pages do not get it. E_INVALIDARG for an object that is not made for pages.
    void AddWebAllowedObject(param::hstring const& name, Foundation::IInspectable const& object) const;

    /// What is seen where a page paints nothing; white at first.
    Windows::UI::Color DefaultBackgroundColor() const;
    void DefaultBackgroundColor(Windows::UI::Color const& value) const;

    /// Writes a picture of the view into the stream, with the timing of RenderTargetBitmap.
    Foundation::IAsyncAction CapturePreviewToStreamAsync(
        Storage::Streams::IRandomAccessStream const& stream) const;

    /// Deletes what web views have stored: cache, cookies, databases.
    static Foundation::IAsyncAction ClearTemporaryWebDataAsync();
};

}  // namespace winrt::Windows::UI::Xaml::Controls
