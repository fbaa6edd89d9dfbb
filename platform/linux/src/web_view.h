#pragma once

#include <webkit2/webkit2.h>

#include "element_tree.h"
#include "glib_ptr.h"
#include "navigation_tracker.h"
#include "script_calls.h"
#include "view_surface.h"
#include "web_allowed_objects.h"

namespace runtime {

/// The implementation of the WebView control: a browser widget, which lives in an offscreen window of its own
/// while nothing visible hosts it and in the app's window otherwise. User-interface thread only.
struct web_view_object : ui_element_object {
    using web_view = winrt::Windows::UI::Xaml::Controls::WebView;
    template <typename Arguments>
    using event = winrt::event<web_view::handler<Arguments>>;

    web_view_object();
    ~web_view_object() override;

    void arrange() override;

    /// A page that hangs does not leave when it is asked to. After some seconds its process is ended and
    /// `load` called once more.
    void navigate(std::string const& uri, std::function<void()> load);
    void load_text(std::string const& html);
    void reload();
    void stop();
    void request_picture(int32_t width, int32_t height, view_surface::receiver deliver);

    WebKitWebView* view() const { return WEBKIT_WEB_VIEW(widget.get()); }
    WebKitSettings* settings() const { return webkit_web_view_get_settings(view()); }
    void set_feature(char const* identifier, bool enabled);

    script_calls& scripts() { return *calls; }
    web_allowed_objects& allowed_objects() { return *objects; }

    winrt::Windows::UI::Color background() const { return background_color; }
    void take_focus();
    void set_background(winrt::Windows::UI::Color value);

    event<winrt::Windows::UI::Xaml::Controls::WebViewNavigationStartingEventArgs> navigation_starting;
    event<winrt::Windows::UI::Xaml::Controls::WebViewContentLoadingEventArgs> content_loading;
    event<winrt::Windows::UI::Xaml::Controls::WebViewDOMContentLoadedEventArgs> dom_content_loaded;
    event<winrt::Windows::UI::Xaml::Controls::WebViewNavigationCompletedEventArgs> navigation_completed;
    event<winrt::Windows::UI::Xaml::Controls::WebViewNewWindowRequestedEventArgs> new_window_requested;
    event<winrt::Windows::UI::Xaml::Controls::WebViewPermissionRequestedEventArgs> permission_requested;
    event<winrt::Windows::UI::Xaml::Controls::WebViewSeparateProcessLostEventArgs> separate_process_lost;

  private:
    navigation_tracker::events tracker_events();
    bool raise_starting(std::string const& uri);

    static void on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer self);
    static void on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self);

    void wait_for_departure(std::function<void()> load);
    void end_wait_for_departure();

    gobject_ptr<GtkWidget> widget;
    gobject_ptr<GtkWidget> offscreen_window;
    std::optional<view_surface> surface;
    std::optional<script_calls> calls;
    std::optional<web_allowed_objects> objects;
    std::optional<navigation_tracker> tracker;
    std::function<void()> load_again;  // when the page has not left in time
    guint departure_timer = 0;
    // Of a page that was given as text, which the engine does not keep when the page's process ends.
    std::string text;
    std::string next_text;  // while the page is on its way
    bool process_has_ended = false;
    winrt::Windows::UI::Color background_color = winrt::Windows::UI::Colors::White();
};

/// Answers what the engine asks of an application: dialogs, choosers, permissions, new windows, what to do
/// about a page whose process has ended.
void answer_engine_requests(web_view_object& owner);

/// Ends a browser widget whose owner is gone.
void retire_view(gobject_ptr<GtkWidget> widget, gobject_ptr<GtkWidget> offscreen_window);

}  // namespace runtime
