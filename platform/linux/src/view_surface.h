#pragma once

#include <cairo.h>
#include <gtk/gtk.h>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "picture.h"

namespace runtime {

/// Pictures of a widget that is not on the screen.
///
/// It takes the place of GTK's own painting: when the widget is to be painted, the damage is only noted, and
/// pixels go straight from the browser's surface into a picture when somebody wants one. What nobody asks for
/// is never copied, and a widget without damage yields the same picture again. User-interface thread only.
class view_surface {
  public:
    /// The widget must outlive the surface.
    explicit view_surface(GtkWidget* widget);
    ~view_surface();
    view_surface(view_surface const&) = delete;
    view_surface& operator=(view_surface const&) = delete;

    using receiver = std::function<void(picture const&)>;

    /// Asks for a picture of `width` x `height` device pixels. The answer comes in a later turn of the loop:
    /// with the next frame that the widget composes, at once if one is waiting, or after about `patience`
    /// with what there is.
    void request(int32_t width, int32_t height, receiver deliver);

    /// Whether the surface paints instead of GTK. Off while the widget is in a window on the screen.
    void set_offscreen(bool value);

    /// Whether the widget paints every pixel of its area.
    void set_opaque(bool value);

    /// How long a request waits for a new frame, half of it more or less.
    static constexpr int patience_ms = 100;

  private:
    /// Memory for one picture, and what has changed in the widget since it was painted.
    struct canvas {
        canvas(int32_t width, int32_t height);
        std::unique_ptr<uint8_t[]> pixels;
        int32_t width;
        int32_t height;
        cairo_region_t* stale;
        std::atomic<int> loans = 0;
        std::weak_ptr<uint8_t> loan;
        ~canvas();
    };
    struct waiting {
        int32_t width;
        int32_t height;
        receiver deliver;
        int64_t since;
    };

    static void on_realize(GtkWidget* widget, gpointer);
    static void on_invalidate(GdkWindow* window, cairo_region_t* region);
    static gboolean on_draw(GtkWidget* widget, cairo_t* context, gpointer self);
    void note_damage(cairo_region_t const* damage);
    void answer_waiting();
    void answer_expired();
    void wait();
    picture compose(int32_t width, int32_t height);
    picture lend(std::shared_ptr<canvas> const& lender);
    std::shared_ptr<canvas> writable_canvas(int32_t width, int32_t height);
    bool paint(canvas& target);
    static uint32_t* stale_pixel(canvas const& target, int allocated_width, int allocated_height,
                                 double scale_x, double scale_y);

    GtkWidget* widget;
    guint timer = 0;
    guint answering = 0;
    bool offscreen = true;
    bool opaque = true;
    bool frame_waiting = true;  // composed since the last picture
    bool painting = false;
    std::vector<waiting> requests;
    std::vector<std::shared_ptr<canvas>> canvases;
    std::shared_ptr<canvas> latest;
};

}  // namespace runtime
