#include <webkit2/webkit2.h>

#include <memory>
#include <stdexcept>
#include <vector>

#include "Sides.h"

namespace zarvik::bench {

namespace {

struct CairoRelease {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

/// An offscreen window with the page, and the loop that reads it.
class BareLoop {
  public:
    BareLoop();
    ~BareLoop() { gtk_widget_destroy(window); }
    BareLoop(const BareLoop&) = delete;
    BareLoop& operator=(const BareLoop&) = delete;

    void load(const std::string& html) {
        webkit_web_view_load_html(WEBKIT_WEB_VIEW(view), html.c_str(), nullptr);
    }
    /// Runs the main loop.
    void run(std::chrono::duration<double> time);

    Reading read() const { return Reading::now(pictures); }
    std::array<std::uint8_t, 4> corner() const;

  private:
    static gboolean onDamage(GtkWidget*, GdkEventExpose* event, gpointer self);

    GtkWidget* const window = gtk_offscreen_window_new();
    GtkWidget* const view;
    std::vector<std::uint8_t> pixels;
    const std::unique_ptr<cairo_surface_t, CairoRelease> target;
    std::uint64_t pictures = 0;
};

GtkWidget* makeView() {
    auto* const context = webkit_web_context_new_ephemeral();
    auto* const view = webkit_web_view_new_with_context(context);
    g_object_unref(context);
    auto* const settings = webkit_web_view_get_settings(WEBKIT_WEB_VIEW(view));
    webkit_settings_set_hardware_acceleration_policy(settings, WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    gtk_widget_set_size_request(view, pageWidth, pageHeight);
    return view;
}

BareLoop::BareLoop()
    : view(makeView()),
      pixels(std::size_t{pageWidth} * pageHeight * 4),
      target(cairo_image_surface_create_for_data(pixels.data(), CAIRO_FORMAT_ARGB32, pageWidth, pageHeight,
                                                 pageWidth * 4)) {
    gtk_widget_set_visual(window, gdk_screen_get_rgba_visual(gtk_widget_get_screen(window)));
    gtk_widget_set_app_paintable(window, TRUE);
    g_signal_connect(window, "damage-event", G_CALLBACK(onDamage), this);
    gtk_container_add(GTK_CONTAINER(window), view);
    gtk_widget_show_all(window);
}

gboolean BareLoop::onDamage(GtkWidget*, GdkEventExpose* event, gpointer self) {
    auto& loop = *static_cast<BareLoop*>(self);
    const std::unique_ptr<cairo_t, CairoRelease> context(cairo_create(loop.target.get()));
    gdk_cairo_region(context.get(), event->region);
    cairo_clip(context.get());
    gtk_widget_draw(loop.view, context.get());
    cairo_surface_flush(loop.target.get());
    ++loop.pictures;
    return GDK_EVENT_PROPAGATE;
}

void BareLoop::run(std::chrono::duration<double> time) {
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(time).count();
    auto* const loop = g_main_loop_new(nullptr, FALSE);
    g_timeout_add(
        static_cast<guint>(milliseconds),
        [](gpointer running) -> gboolean {
            g_main_loop_quit(static_cast<GMainLoop*>(running));
            return G_SOURCE_REMOVE;
        },
        loop);
    g_main_loop_run(loop);
    g_main_loop_unref(loop);
}

std::array<std::uint8_t, 4> BareLoop::corner() const {
    return {pixels[0], pixels[1], pixels[2], pixels[3]};
}

}  // namespace

Measurement measureBareLoop(const PageText& page, const Settings& settings) {
    gtk_disable_setlocale();  // numbers are written as C++ writes them
    if (!gtk_init_check(nullptr, nullptr)) {
        throw std::runtime_error("GTK cannot open a display. Is DISPLAY set?");
    }
    BareLoop loop;
    loop.load(page.html);
    loop.run(warmUp);

    const Reading begin = loop.read();
    loop.run(std::chrono::duration<double>(settings.seconds));
    const Reading end = loop.read();
    expectCorner(loop.corner());
    return Measurement::between(begin, end);
}

}  // namespace zarvik::bench
