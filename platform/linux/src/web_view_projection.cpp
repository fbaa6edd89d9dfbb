// The public face of the WebView control.

#include <winrt/Windows.UI.Xaml.Controls.h>

#include <cmath>

#include "http_request.h"
#include "local_content.h"
#include "native_window.h"
#include "stream.h"
#include "web_context.h"
#include "web_view.h"
#include "web_view_arguments.h"

namespace winrt::impl {

template <>
bool is_a<Windows::UI::Xaml::Controls::WebView>(object const& candidate) noexcept {
    return dynamic_cast<runtime::web_view_object const*>(&candidate);
}

}  // namespace winrt::impl

namespace winrt::Windows::UI::Xaml::Controls {

using runtime::object_of;
using runtime::web_view_object;

namespace {

Foundation::Uri uri_of(Foundation::IInspectable const& arguments) {
    return Foundation::Uri(to_hstring(object_of<runtime::uri_arguments>(arguments).uri));
}

/// Throws when there can be no web data, because there can be no web views.
void clear_web_data(std::shared_ptr<impl::async_object<void>> const& operation) {
    using pending = std::shared_ptr<impl::async_object<void>>;
    webkit_website_data_manager_clear(
        webkit_web_context_get_website_data_manager(runtime::web_context()), WEBKIT_WEBSITE_DATA_ALL, 0,
        nullptr,
        [](GObject* manager, GAsyncResult* result, gpointer data) {
            std::unique_ptr<pending> const owner(static_cast<pending*>(data));
            runtime::glib_error error;
            if (webkit_website_data_manager_clear_finish(WEBKIT_WEBSITE_DATA_MANAGER(manager), result,
                                                         error.put())) {
                (*owner)->complete();
            } else {
                (*owner)->fail(std::make_exception_ptr(hresult_error(E_FAIL, to_hstring(error.message()))));
            }
        },
        new pending(operation));
}

}  // namespace

// Event arguments

Foundation::Uri WebViewNavigationStartingEventArgs::Uri() const {
    return uri_of(*this);
}

void WebViewNavigationStartingEventArgs::Cancel(bool value) const {
    object_of<runtime::navigation_starting_arguments>(*this).cancel = value;
}

bool WebViewNavigationCompletedEventArgs::IsSuccess() const {
    return !object_of<runtime::navigation_completed_arguments>(*this).error;
}

Web::WebErrorStatus WebViewNavigationCompletedEventArgs::WebErrorStatus() const {
    return object_of<runtime::navigation_completed_arguments>(*this).error.value_or(
        Web::WebErrorStatus::Unknown);
}

Foundation::Uri WebViewNewWindowRequestedEventArgs::Uri() const {
    return uri_of(*this);
}

void WebViewNewWindowRequestedEventArgs::Handled(bool value) const {
    object_of<runtime::new_window_arguments>(*this).handled = value;
}

WebViewPermissionRequest WebViewPermissionRequestedEventArgs::PermissionRequest() const {
    return WebViewPermissionRequest(object_of<runtime::permission_arguments>(*this).request);
}

WebViewPermissionType WebViewPermissionRequest::PermissionType() const {
    return object_of<runtime::permission_request>(*this).type;
}

void WebViewPermissionRequest::Allow() const {
    object_of<runtime::permission_request>(*this).allowed = true;
}

void WebViewPermissionRequest::Deny() const {
    object_of<runtime::permission_request>(*this).allowed = false;
}

// Settings

void WebViewSettings::IsIndexedDBEnabled(bool value) const {
    object_of<web_view_object>(*this).set_feature("IndexedDBAPI", value);
}

// The control

WebView::WebView() : FrameworkElement(runtime::make_ui_object<web_view_object>()) {}

#define WINRT_LINUX_EVENT(Name, member, Arguments)                       \
    event_token WebView::Name(handler<Arguments> const& handler) const { \
        return object_of<web_view_object>(*this).member.add(handler);    \
    }

WINRT_LINUX_EVENT(NavigationStarting, navigation_starting, WebViewNavigationStartingEventArgs)
WINRT_LINUX_EVENT(ContentLoading, content_loading, WebViewContentLoadingEventArgs)
WINRT_LINUX_EVENT(DOMContentLoaded, dom_content_loaded, WebViewDOMContentLoadedEventArgs)
WINRT_LINUX_EVENT(NavigationCompleted, navigation_completed, WebViewNavigationCompletedEventArgs)
WINRT_LINUX_EVENT(NewWindowRequested, new_window_requested, WebViewNewWindowRequestedEventArgs)
WINRT_LINUX_EVENT(PermissionRequested, permission_requested, WebViewPermissionRequestedEventArgs)
WINRT_LINUX_EVENT(SeparateProcessLost, separate_process_lost, WebViewSeparateProcessLostEventArgs)

#undef WINRT_LINUX_EVENT

WebViewSettings WebView::Settings() const {
    runtime::ui_thread::require_current();
    return WebViewSettings(implementation);
}

bool WebView::Focus(FocusState) const {
    object_of<web_view_object>(*this).take_focus();
    return true;
}

bool WebView::CanGoBack() const {
    return webkit_web_view_can_go_back(object_of<web_view_object>(*this).view());
}

bool WebView::CanGoForward() const {
    return webkit_web_view_can_go_forward(object_of<web_view_object>(*this).view());
}

Foundation::Uri WebView::Source() const {
    auto const* const uri = webkit_web_view_get_uri(object_of<web_view_object>(*this).view());
    return uri && *uri ? Foundation::Uri(to_hstring(uri)) : nullptr;
}

void WebView::Navigate(Foundation::Uri const& source) const {
    auto& object = object_of<web_view_object>(*this);
    if (source.SchemeName() == L"javascript") {
        throw hresult_error(E_INVALIDARG, L"A script is not an address to navigate to.");
    }
    if (source.SchemeName() == runtime::local_scheme) {
        throw hresult_error(E_INVALIDARG, L"Local content needs a resolver.");
    }
    auto const uri = to_string(source.AbsoluteUri());
    object.navigate(uri, [&object, uri] { webkit_web_view_load_uri(object.view(), uri.c_str()); });
}

Foundation::Uri WebView::BuildLocalStreamUri(param::hstring const& contentIdentifier,
                                             param::hstring const& relativePath) const {
    object_of<web_view_object>(*this);
    return runtime::local_uri(contentIdentifier.value, relativePath.value);
}

void WebView::NavigateToLocalStreamUri(Foundation::Uri const& source,
                                       Web::IUriToStreamResolver const& streamResolver) const {
    auto& object = object_of<web_view_object>(*this);
    if (source.SchemeName() != runtime::local_scheme || !streamResolver) {
        throw hresult_error(E_INVALIDARG, L"A local address and its resolver are needed.");
    }
    auto const uri = to_string(source.AbsoluteUri());
    object.navigate(uri, [&object, uri, host = to_string(source.Host()), streamResolver] {
        runtime::serve_local_content(object.view(), host, streamResolver);
        webkit_web_view_load_uri(object.view(), uri.c_str());
    });
}

void WebView::NavigateToString(param::hstring const& text) const {
    auto& object = object_of<web_view_object>(*this);
    object.navigate("about:blank", [&object, html = to_string(text.value)] { object.load_text(html); });
}

void WebView::NavigateWithHttpRequestMessage(Web::Http::HttpRequestMessage const& requestMessage) const {
    auto& object = object_of<web_view_object>(*this);
    auto const request = runtime::engine_request(requestMessage);
    object.navigate(webkit_uri_request_get_uri(request.get()),
                    [&object, request] { webkit_web_view_load_request(object.view(), request.get()); });
}

void WebView::GoBack() const {
    webkit_web_view_go_back(object_of<web_view_object>(*this).view());
}

void WebView::GoForward() const {
    webkit_web_view_go_forward(object_of<web_view_object>(*this).view());
}

void WebView::Refresh() const {
    object_of<web_view_object>(*this).reload();
}

void WebView::Stop() const {
    object_of<web_view_object>(*this).stop();
}

Foundation::IAsyncOperation<hstring> WebView::InvokeScriptAsync(
    param::hstring const& scriptName, param::async_iterable<hstring> const& arguments) const {
    std::vector<std::string> texts;
    for (auto const& argument : arguments.elements) {
        texts.push_back(to_string(argument));
    }
    return Foundation::IAsyncOperation<hstring>(
        object_of<web_view_object>(*this).scripts().call(to_string(scriptName.value), texts));
}

void WebView::AddWebAllowedObject(param::hstring const& name, Foundation::IInspectable const& object) const {
    auto& objects = object_of<web_view_object>(*this).allowed_objects();
    auto allowed = std::dynamic_pointer_cast<runtime::page_object>(object.get_implementation());
    if (!allowed || name.value.empty()) {
        throw hresult_error(E_INVALIDARG);
    }
    objects.add(to_string(name.value), std::move(allowed));
}

Windows::UI::Color WebView::DefaultBackgroundColor() const {
    return object_of<web_view_object>(*this).background();
}

void WebView::DefaultBackgroundColor(Windows::UI::Color const& value) const {
    object_of<web_view_object>(*this).set_background(value);
}

Foundation::IAsyncAction WebView::CapturePreviewToStreamAsync(
    Storage::Streams::IRandomAccessStream const& stream) const {
    auto& object = object_of<web_view_object>(*this);
    if (!stream) {
        throw hresult_error(E_POINTER);
    }
    auto operation = std::make_shared<impl::async_object<void>>();
    auto const scale = runtime::native_window::instance().scale_factor();
    auto const device_pixels = [&](double length) {
        return std::isnan(length) ? 0 : static_cast<int32_t>(length * scale);
    };
    object.request_picture(device_pixels(object.width), device_pixels(object.height),
                           [operation, stream](runtime::picture const& picture) {
                               runtime::store_picture(stream, picture);
                               operation->complete();
                           });
    return Foundation::IAsyncAction(operation);
}

Foundation::IAsyncAction WebView::ClearTemporaryWebDataAsync() {
    auto operation = std::make_shared<impl::async_object<void>>();
    runtime::ui_thread::instance().post([operation] {
        try {
            clear_web_data(operation);
        } catch (...) {
            operation->fail(std::current_exception());
        }
    });
    return Foundation::IAsyncAction(operation);
}

}  // namespace winrt::Windows::UI::Xaml::Controls
