// What the engine asks of an application. Every question is answered at once: an open dialog would block the
// page, its scripts and its loads.

#include <string_view>

#include "local_content.h"
#include "web_view.h"
#include "web_view_arguments.h"

namespace runtime {

using winrt::Windows::UI::Xaml::Controls::WebViewPermissionType;

namespace {

/// Whether any page could have asked for this window. The engine lets only local pages follow a link to local
/// content, but does not look what address a script opens.
bool may_be_foreign(WebKitNavigationAction* action, std::string_view uri) {
    return is_local(uri) &&
           webkit_navigation_action_get_navigation_type(action) != WEBKIT_NAVIGATION_TYPE_LINK_CLICKED;
}

GtkWidget* on_create(WebKitWebView*, WebKitNavigationAction* action, gpointer data) {
    std::string_view const uri = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    if (!uri.empty() && !uri.starts_with("javascript:") && !may_be_foreign(action, uri)) {
        auto& owner = *static_cast<web_view_object*>(data);
        raise(owner.new_window_requested, owner, std::make_shared<new_window_arguments>(std::string(uri)));
    }
    return nullptr;  // no window of our own, whether a handler loads the page elsewhere or not
}

std::optional<WebViewPermissionType> permission_type(WebKitPermissionRequest* request) {
    if (WEBKIT_IS_GEOLOCATION_PERMISSION_REQUEST(request)) {
        return WebViewPermissionType::Geolocation;
    }
    bool const is_user_media = WEBKIT_IS_USER_MEDIA_PERMISSION_REQUEST(request);
    if (is_user_media &&
        webkit_user_media_permission_is_for_display_device(WEBKIT_USER_MEDIA_PERMISSION_REQUEST(request))) {
        return std::nullopt;  // the screen, which the platform has no name for
    }
    if (is_user_media || WEBKIT_IS_DEVICE_INFO_PERMISSION_REQUEST(request)) {
        return WebViewPermissionType::Media;
    }
    if (WEBKIT_IS_POINTER_LOCK_PERMISSION_REQUEST(request)) {
        return WebViewPermissionType::PointerLock;
    }
    if (WEBKIT_IS_NOTIFICATION_PERMISSION_REQUEST(request)) {
        return WebViewPermissionType::WebNotifications;
    }
    return std::nullopt;
}

gboolean on_permission(WebKitWebView*, WebKitPermissionRequest* engine_request, gpointer data) {
    auto& owner = *static_cast<web_view_object*>(data);
    bool allowed = false;
    if (auto const type = permission_type(engine_request)) {
        auto const request = std::make_shared<permission_request>(*type);
        raise(owner.permission_requested, owner, std::make_shared<permission_arguments>(request));
        allowed = request->allowed;
    }
    if (allowed) {
        webkit_permission_request_allow(engine_request);
    } else {
        webkit_permission_request_deny(engine_request);
    }
    return TRUE;
}

void on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason reason, gpointer data) {
    if (reason != WEBKIT_WEB_PROCESS_TERMINATED_BY_API) {
        auto& owner = *static_cast<web_view_object*>(data);
        raise(owner.separate_process_lost, owner, std::make_shared<plain_arguments>());
    }
}

gboolean on_dialog(WebKitWebView*, WebKitScriptDialog* dialog, gpointer) {
    if (webkit_script_dialog_get_dialog_type(dialog) == WEBKIT_SCRIPT_DIALOG_BEFORE_UNLOAD_CONFIRM) {
        webkit_script_dialog_confirm_set_confirmed(dialog, TRUE);  // a page cannot hold the view
    }
    return TRUE;
}

gboolean on_file_chooser(WebKitWebView*, WebKitFileChooserRequest* request, gpointer) {
    webkit_file_chooser_request_cancel(request);
    return TRUE;
}

gboolean on_option_menu(WebKitWebView*, WebKitOptionMenu* menu, GdkEvent*, GdkRectangle*, gpointer) {
    webkit_option_menu_close(menu);
    return TRUE;
}

}  // namespace

void answer_engine_requests(web_view_object& owner) {
    auto* const view = owner.view();
    // After those of the scripts and the navigation, which fail first.
    g_signal_connect(view, "web-process-terminated", G_CALLBACK(on_terminated), &owner);
    g_signal_connect(view, "create", G_CALLBACK(on_create), &owner);
    g_signal_connect(view, "permission-request", G_CALLBACK(on_permission), &owner);
    g_signal_connect(view, "script-dialog", G_CALLBACK(on_dialog), &owner);
    g_signal_connect(view, "run-file-chooser", G_CALLBACK(on_file_chooser), &owner);
    g_signal_connect(view, "show-option-menu", G_CALLBACK(on_option_menu), &owner);
    g_signal_connect(view, "context-menu", G_CALLBACK(gtk_true), &owner);
    g_signal_connect(view, "print", G_CALLBACK(gtk_true), &owner);
    g_signal_connect(view, "enter-fullscreen", G_CALLBACK(gtk_true), &owner);
    g_signal_connect(
        view, "authenticate",
        G_CALLBACK(+[](WebKitWebView*, WebKitAuthenticationRequest* request, gpointer) -> gboolean {
            webkit_authentication_request_cancel(request);
            return TRUE;
        }),
        &owner);
}

}  // namespace runtime
