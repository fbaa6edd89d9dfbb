#pragma once

#include <glib.h>

#include <optional>
#include <string>

#include <winrt/Windows.UI.Xaml.Controls.h>

#include "element_tree.h"

namespace runtime {

/// Arguments of an event that concerns a URI.
struct uri_arguments : winrt::impl::object {
    explicit uri_arguments(std::string uri) : uri(std::move(uri)) {}
    std::string uri;
};

struct navigation_starting_arguments : uri_arguments {
    using uri_arguments::uri_arguments;
    bool cancel = false;
};

struct navigation_completed_arguments : winrt::impl::object {
    explicit navigation_completed_arguments(std::optional<winrt::Windows::Web::WebErrorStatus> error)
        : error(error) {}
    std::optional<winrt::Windows::Web::WebErrorStatus> error;
};

struct new_window_arguments : uri_arguments {
    using uri_arguments::uri_arguments;
    bool handled = false;
};

struct permission_request : winrt::impl::object {
    explicit permission_request(winrt::Windows::UI::Xaml::Controls::WebViewPermissionType type)
        : type(type) {}
    winrt::Windows::UI::Xaml::Controls::WebViewPermissionType type;
    bool allowed = false;
};

/// Arguments of an event that tells no more than that it happened.
struct plain_arguments : winrt::impl::object {};

struct permission_arguments : winrt::impl::object {
    explicit permission_arguments(std::shared_ptr<permission_request> request)
        : request(std::move(request)) {}
    std::shared_ptr<permission_request> request;
};

/// Raises an event of a web view. An exception of a handler ends here, as it does on the platform's
/// dispatcher: it must not unwind through the engine's C frames.
template <typename Arguments>
void raise(winrt::event<winrt::Windows::Foundation::TypedEventHandler<
               winrt::Windows::UI::Xaml::Controls::WebView, Arguments>>& event,
           ui_element_object& sender, std::shared_ptr<winrt::impl::object> arguments) noexcept {
    auto const alive = sender.weak_from_this().lock();
    if (!alive) {
        return;  // the engine still reports while the view waits for its end
    }
    try {
        event(winrt::Windows::UI::Xaml::Controls::WebView(alive), Arguments(std::move(arguments)));
    } catch (winrt::hresult_error const& error) {
        g_critical("A handler of a web view's event failed: %s", winrt::to_string(error.message()).c_str());
    } catch (...) {
        g_critical("A handler of a web view's event failed");
    }
}

}  // namespace runtime
