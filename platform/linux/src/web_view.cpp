#include "web_view.h"

#include <algorithm>
#include <cmath>
#include <set>

#include "native_window.h"
#include "offscreen_window.h"
#include "user_agent.h"
#include "web_context.h"
#include "web_view_arguments.h"

namespace runtime {

namespace {

/// Surfaces have bounds: no side beyond what graphics devices take, and no more memory than a picture is
/// worth.
constexpr int largest_side = 16384;

// A page that does nothing worse than much work on leaving gets this long.
constexpr guint departure_patience_ms = 5000;
constexpr int largest_area = 1 << 26;

/// All live views, for settings of the whole process.
std::set<web_view_object*>& live_views() {
    static auto* const views = new std::set<web_view_object*>();
    return *views;
}

void apply_user_agent(WebKitSettings* settings, std::string const& text) {
    webkit_settings_set_user_agent(settings, text.empty() ? nullptr : text.c_str());
}

void follow_user_agent() {
    static bool const following = [] {
        set_user_agent_listener([](std::string const& text) {
            ui_thread::instance().post([text] {
                for (auto const* view : live_views()) {
                    apply_user_agent(view->settings(), text);
                }
            });
        });
        return true;
    }();
    static_cast<void>(following);
}

gobject_ptr<WebKitUserContentManager> make_content_manager() {
    auto manager = gobject_ptr<WebKitUserContentManager>::adopt(webkit_user_content_manager_new());
    webkit_user_content_manager_register_script_message_handler_in_world(
        manager.get(), navigation_tracker::handler, page_world);
    user_script const download_script(webkit_user_script_new_for_world(
        navigation_tracker::download_script, WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
        WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, page_world, nullptr, nullptr));
    webkit_user_content_manager_add_script(manager.get(), download_script.get());
    for (auto const* source : {script_calls::script, navigation_tracker::script}) {
        webkit_user_content_manager_add_script(manager.get(), make_page_script(source).get());
    }
    user_script const hiding_script(
        webkit_user_script_new(navigation_tracker::hiding_script, WEBKIT_USER_CONTENT_INJECT_ALL_FRAMES,
                               WEBKIT_USER_SCRIPT_INJECT_AT_DOCUMENT_START, nullptr, nullptr));
    webkit_user_content_manager_add_script(manager.get(), hiding_script.get());
    return manager;
}

gobject_ptr<WebKitSettings> make_settings() {
    auto settings = gobject_ptr<WebKitSettings>::adopt(webkit_settings_new());
    webkit_settings_set_javascript_can_open_windows_automatically(settings.get(), TRUE);
    webkit_settings_set_enable_media_stream(settings.get(), TRUE);
    apply_user_agent(settings.get(), user_agent());
    return settings;
}

GtkWidget* make_widget() {
    auto const manager = make_content_manager();
    auto const settings = make_settings();
    return GTK_WIDGET(g_object_new(WEBKIT_TYPE_WEB_VIEW, "web-context", web_context(), "user-content-manager",
                                   manager.get(), "settings", settings.get(), nullptr));
}

/// The view that has the keyboard focus.
web_view_object*& focused_view() {
    static web_view_object* view = nullptr;
    return view;
}

void tell_focus(GtkWidget* widget, bool focused) {
    std::unique_ptr<GdkEvent, decltype(&gdk_event_free)> const event(gdk_event_new(GDK_FOCUS_CHANGE),
                                                                     gdk_event_free);
    event->focus_change.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(widget)));
    event->focus_change.in = focused ? 1 : 0;
    gtk_widget_send_focus_change(widget, event.get());
}

WebKitFeature* find_feature(char const* identifier) {
    static auto* const features = webkit_settings_get_all_features();
    for (gsize i = 0; i < webkit_feature_list_get_length(features); ++i) {
        auto* const feature = webkit_feature_list_get(features, i);
        if (g_strcmp0(webkit_feature_get_identifier(feature), identifier) == 0) {
            return feature;
        }
    }
    throw winrt::hresult_error(E_NOTIMPL,
                               winrt::to_hstring(std::string("The browser engine lacks ") + identifier));
}

/// A side's length within the bounds, beside the other side.
int bounded(double length, int other_side = 1) {
    int const longest = std::min(largest_side, largest_area / other_side);
    return std::isnan(length) ? 1 : static_cast<int>(std::clamp<double>(length, 1, longest));
}

}  // namespace

web_view_object::web_view_object() {
    ui_thread::require_current();
    follow_user_agent();
    widget = gobject_ptr<GtkWidget>::share(make_widget());
    offscreen_window = gobject_ptr<GtkWidget>::share(make_offscreen_window());
    set_feature("NavigationAPI", true);
    set_feature("DownloadAttribute", false);
    set_feature("UseDamagingInformationForCompositing", true);
    // Without it what is transparent would be lost on the way to the picture.
    gtk_widget_set_visual(offscreen_window.get(),
                          gdk_screen_get_rgba_visual(gtk_widget_get_screen(offscreen_window.get())));
    gtk_widget_set_app_paintable(offscreen_window.get(), TRUE);
    surface.emplace(widget.get());
    set_background(background_color);
    calls.emplace(view());
    objects.emplace(view());
    tracker.emplace(view(), tracker_events());
    g_signal_connect(view(), "load-changed", G_CALLBACK(on_load_changed), this);
    g_signal_connect(view(), "web-process-terminated", G_CALLBACK(on_terminated), this);
    answer_engine_requests(*this);
    gtk_widget_set_size_request(widget.get(), 1, 1);
    gtk_container_add(GTK_CONTAINER(offscreen_window.get()), widget.get());
    gtk_widget_show_all(offscreen_window.get());
    live_views().insert(this);
}

web_view_object::~web_view_object() {
    end_wait_for_departure();
    live_views().erase(this);
    if (focused_view() == this) {
        focused_view() = nullptr;
    }
    tracker.reset();
    objects.reset();
    calls.reset();
    surface.reset();
    g_signal_handlers_disconnect_by_data(widget.get(), this);
    retire_view(std::move(widget), std::move(offscreen_window));
}

void web_view_object::arrange() {
    int const wide = bounded(width);
    int const high = bounded(height, wide);
    gtk_widget_set_size_request(widget.get(), wide, high);

    auto const place = locate();
    auto& window = native_window::instance();
    auto const area = window.size();
    bool const on_screen = place.visible && place.x < area.width && place.y < area.height &&
                           place.x + wide > 0 && place.y + high > 0;
    auto* const offscreen = offscreen_window.get();
    bool const was_on_screen = gtk_widget_get_parent(widget.get()) != offscreen;
    if (on_screen) {
        if (!was_on_screen) {
            gtk_container_remove(GTK_CONTAINER(offscreen), widget.get());
        }
        window.place(widget.get(), static_cast<int>(place.x), static_cast<int>(place.y));
    } else if (was_on_screen) {
        window.remove(widget.get());
        gtk_container_add(GTK_CONTAINER(offscreen), widget.get());
    }
    surface->set_offscreen(!on_screen);
    gtk_widget_set_visible(widget.get(), visibility == winrt::Windows::UI::Xaml::Visibility::Visible);
}

void web_view_object::navigate(std::string const& uri, std::function<void()> load) {
    if (!tracker->begin(uri)) {
        return;
    }
    std::string const current = webkit_web_view_get_uri(view()) ? webkit_web_view_get_uri(view()) : "";
    auto const fragment = uri.find('#');
    if (fragment != std::string::npos && current.substr(0, current.find('#')) == uri.substr(0, fragment)) {
        tracker->expect_move_within_document();
    }
    load();
    wait_for_departure(std::move(load));
}

void web_view_object::wait_for_departure(std::function<void()> load) {
    end_wait_for_departure();
    if (!webkit_web_view_get_uri(view())) {
        return;  // a process that only just starts may take its time
    }
    load_again = std::move(load);
    departure_timer = g_timeout_add_once(
        departure_patience_ms,
        [](gpointer data) {
            auto* const self = static_cast<web_view_object*>(data);
            self->departure_timer = 0;
            auto const load = std::exchange(self->load_again, nullptr);
            if (self->tracker->is_expecting()) {
                webkit_web_view_terminate_web_process(self->view());
                load();
            }
        },
        this);
}

void web_view_object::end_wait_for_departure() {
    load_again = nullptr;
    if (auto const timer = std::exchange(departure_timer, 0)) {
        g_source_remove(timer);
    }
}

void web_view_object::load_text(std::string const& html) {
    next_text = html;
    webkit_web_view_load_html(view(), html.c_str(), nullptr);
}

void web_view_object::reload() {
    char const* const uri = webkit_web_view_get_uri(view());
    if (!uri) {
        return;
    }
    navigate(uri, [this] {
        if (process_has_ended && !text.empty()) {
            load_text(text);
        } else {
            webkit_web_view_reload(view());
        }
    });
}

void web_view_object::on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
    auto* const self = static_cast<web_view_object*>(data);
    if (event == WEBKIT_LOAD_COMMITTED) {
        self->text = std::exchange(self->next_text, {});
        self->process_has_ended = false;
    }
}

void web_view_object::on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self) {
    static_cast<web_view_object*>(self)->process_has_ended = true;
}

void web_view_object::stop() {
    webkit_web_view_stop_loading(view());
    tracker->cancel();
}

void web_view_object::request_picture(int32_t wanted_width, int32_t wanted_height,
                                      view_surface::receiver deliver) {
    bool const empty = wanted_width <= 0 || wanted_height <= 0;
    int const wide = empty ? 0 : bounded(wanted_width);
    surface->request(wide, empty ? 0 : bounded(wanted_height, wide), std::move(deliver));
}

void web_view_object::set_feature(char const* identifier, bool enabled) {
    webkit_settings_set_feature_enabled(settings(), find_feature(identifier), enabled);
}

void web_view_object::take_focus() {
    if (focused_view() == this) {
        return;
    }
    if (auto* const previous = std::exchange(focused_view(), this)) {
        tell_focus(previous->widget.get(), false);
    }
    tell_focus(widget.get(), true);
}

void web_view_object::set_background(winrt::Windows::UI::Color value) {
    background_color = value;
    constexpr uint8_t full = 255;
    bool const opaque = value.A == full;
    // Without a graphics processor the engine's own painting into memory is by far the cheapest. But it never
    // clears what it paints on, so a transparent view needs the compositor.
    webkit_settings_set_hardware_acceleration_policy(
        settings(),
        opaque ? WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER : WEBKIT_HARDWARE_ACCELERATION_POLICY_ALWAYS);
    auto const part = [](uint8_t channel) { return static_cast<double>(channel) / full; };
    GdkRGBA const color{part(value.R), part(value.G), part(value.B), part(value.A)};
    webkit_web_view_set_background_color(view(), &color);
    surface->set_opaque(opaque);
}

bool web_view_object::raise_starting(std::string const& uri) {
    auto const arguments = std::make_shared<navigation_starting_arguments>(uri);
    raise(navigation_starting, *this, arguments);
    if (arguments->cancel) {
        objects->forget_requests();
    }
    return !arguments->cancel;
}

navigation_tracker::events web_view_object::tracker_events() {
    return {
        .starting = [this](auto const& uri) { return raise_starting(uri); },
        .accepted =
            [this] {
                next_text.clear();
                objects->install();
            },
        .content_loading = [this] { raise(content_loading, *this, std::make_shared<plain_arguments>()); },
        .dom_content_loaded =
            [this] { raise(dom_content_loaded, *this, std::make_shared<plain_arguments>()); },
        .completed =
            [this](auto error) {
                objects->end_navigation();
                end_wait_for_departure();
                raise(navigation_completed, *this, std::make_shared<navigation_completed_arguments>(error));
            },
    };
}

}  // namespace runtime
