#include "view_surface.h"

#include <algorithm>

#include "ui_thread.h"

namespace runtime {

namespace {

struct cairo_objects {
    cairo_surface_t* surface;
    cairo_t* context;

    cairo_objects(uint8_t* pixels, int32_t width, int32_t height)
        : surface(cairo_image_surface_create_for_data(pixels, CAIRO_FORMAT_ARGB32, width, height, width * 4)),
          context(cairo_create(surface)) {}
    ~cairo_objects() {
        cairo_destroy(context);
        cairo_surface_destroy(surface);
    }
    cairo_objects(cairo_objects const&) = delete;
    cairo_objects& operator=(cairo_objects const&) = delete;
};

/// More than any widget's area.
constexpr cairo_rectangle_int_t everything{0, 0, 1 << 20, 1 << 20};

/// A pixel that tells whether the widget has been painted, since none of its own can be without colour and
/// opacity. It stays as it was if not.
class witness {
  public:
    explicit witness(uint32_t* pixel) : pixel(pixel), original(pixel ? std::exchange(*pixel, 0) : 0) {}

    bool has_seen_paint() {
        if (pixel && *pixel == 0) {
            *pixel = original;
            return false;
        }
        return true;
    }

  private:
    uint32_t* pixel;
    uint32_t original;
};

/// What the widget knows its surface by, since windows tell their handlers nothing else.
constexpr char const* key = "surface";

constexpr int64_t patience_us = int64_t{1000} * view_surface::patience_ms;

/// How many pictures are kept for reuse: one that the receiver still shows, one to paint the next into.
constexpr size_t kept_canvases = 2;

}  // namespace

view_surface::canvas::canvas(int32_t width, int32_t height)
    : pixels(new uint8_t[static_cast<size_t>(width) * static_cast<size_t>(height) * 4]()),
      width(width),
      height(height),
      // Everything is stale at first, whatever the widget's size is.
      stale(cairo_region_create_rectangle(&everything)) {}

view_surface::canvas::~canvas() {
    cairo_region_destroy(stale);
}

view_surface::view_surface(GtkWidget* widget) : widget(widget) {
    g_object_set_data(G_OBJECT(widget), key, this);
    g_signal_connect(widget, "draw", G_CALLBACK(on_draw), this);
    g_signal_connect_after(widget, "realize", G_CALLBACK(on_realize), nullptr);
}

view_surface::~view_surface() {
    g_object_set_data(G_OBJECT(widget), key, nullptr);
    g_signal_handlers_disconnect_by_data(widget, this);
    for (auto const source : {timer, answering}) {
        if (source) {
            g_source_remove(source);
        }
    }
    for (auto const& request : requests) {
        request.deliver({});
    }
}

void view_surface::set_offscreen(bool value) {
    offscreen = value;
    frame_waiting = true;
}

void view_surface::set_opaque(bool value) {
    opaque = value;
    frame_waiting = true;
    for (auto const& entry : canvases) {
        cairo_region_union_rectangle(entry->stale, &everything);
    }
}

void view_surface::request(int32_t width, int32_t height, receiver deliver) {
    requests.push_back({width, height, std::move(deliver), g_get_monotonic_time()});
    bool const empty = width <= 0 || height <= 0;  // nothing will ever be composed
    if (!empty && (frame_waiting || !latest || latest->width != width || latest->height != height)) {
        answer_waiting();
    } else if (!timer) {
        wait();
    }
}

/// One timer for all requests. It goes off at a moment that is the same for all surfaces, so that many pages
/// at rest wake the thread no more often than one.
void view_surface::wait() {
    auto* const source = g_timeout_source_new(patience_ms);
    g_source_set_ready_time(source, (g_get_monotonic_time() / patience_us + 1) * patience_us);
    g_source_set_callback(
        source,
        [](gpointer self) -> gboolean {
            static_cast<view_surface*>(self)->answer_expired();
            return G_SOURCE_REMOVE;
        },
        this, nullptr);
    timer = g_source_attach(source, nullptr);
    g_source_unref(source);
}

void view_surface::on_realize(GtkWidget* widget, gpointer) {
    gdk_window_set_invalidate_handler(gtk_widget_get_window(widget), on_invalidate);
}

/// Has GTK forget what it would have painted: its way to paint nothing costs the display's server two copies
/// of the area.
void view_surface::on_invalidate(GdkWindow* window, cairo_region_t* region) {
    gpointer owner = nullptr;
    gdk_window_get_user_data(window, &owner);
    auto* const self = owner ? static_cast<view_surface*>(g_object_get_data(G_OBJECT(owner), key)) : nullptr;
    if (!self || !self->offscreen || self->painting) {
        return;
    }
    self->note_damage(region);
    cairo_region_subtract(region, region);
}

gboolean view_surface::on_draw(GtkWidget*, cairo_t* context, gpointer data) {
    auto* const self = static_cast<view_surface*>(data);
    if (self->painting) {
        return GDK_EVENT_PROPAGATE;
    }
    auto* const rectangles = cairo_copy_clip_rectangle_list(context);
    auto* const damage = cairo_region_create();
    if (rectangles->status != CAIRO_STATUS_SUCCESS) {
        cairo_region_union_rectangle(damage, &everything);
    }
    for (int i = 0; i < rectangles->num_rectangles; ++i) {
        auto const& part = rectangles->rectangles[i];
        cairo_rectangle_int_t const area{static_cast<int>(part.x), static_cast<int>(part.y),
                                         static_cast<int>(part.width + 1), static_cast<int>(part.height + 1)};
        cairo_region_union_rectangle(damage, &area);
    }
    self->note_damage(damage);
    cairo_region_destroy(damage);
    cairo_rectangle_list_destroy(rectangles);
    return self->offscreen ? GDK_EVENT_STOP : GDK_EVENT_PROPAGATE;
}

void view_surface::note_damage(cairo_region_t const* damage) {
    constexpr int most_rectangles = 256;  // of a page that nobody looks at
    for (auto const& entry : canvases) {
        cairo_region_union(entry->stale, damage);
        if (cairo_region_num_rectangles(entry->stale) > most_rectangles) {
            cairo_rectangle_int_t extents;
            cairo_region_get_extents(entry->stale, &extents);
            cairo_region_union_rectangle(entry->stale, &extents);
        }
    }
    frame_waiting = true;
    if (!requests.empty() && !answering) {
        // In a turn of its own, for the browser engine is in the middle of taking the frame over.
        answering = g_idle_add_full(
            G_PRIORITY_DEFAULT,
            [](gpointer data) -> gboolean {
                auto* const self = static_cast<view_surface*>(data);
                self->answering = 0;
                self->answer_waiting();
                return G_SOURCE_REMOVE;
            },
            this, nullptr);
    }
}

void view_surface::answer_waiting() {
    if (requests.empty()) {
        return;
    }
    frame_waiting = false;
    for (auto& request : std::exchange(requests, {})) {
        // The receiver may do anything, so it gets its picture in a turn of its own.
        ui_thread::instance().post([result = compose(request.width, request.height),
                                    deliver = std::move(request.deliver)] { deliver(result); });
    }
}

void view_surface::answer_expired() {
    timer = 0;
    if (requests.empty()) {
        return;
    }
    auto const waited_us = g_get_monotonic_time() - requests.front().since;
    if (waited_us >= patience_us / 2) {
        answer_waiting();
    } else {
        wait();
    }
}

picture view_surface::compose(int32_t width, int32_t height) {
    if (width <= 0 || height <= 0) {
        return {};
    }
    bool const unchanged =
        latest && latest->width == width && latest->height == height && cairo_region_is_empty(latest->stale);
    if (!unchanged) {
        auto const target = writable_canvas(width, height);
        bool const is_first = !latest || latest->width != width || latest->height != height;
        if (paint(*target) || is_first) {
            latest = target;
        }
    }
    return lend(latest);
}

/// Memory that nobody reads: the latest picture itself when it was never lent, another one otherwise.
std::shared_ptr<view_surface::canvas> view_surface::writable_canvas(int32_t width, int32_t height) {
    std::erase_if(canvases,
                  [&](auto const& entry) { return entry->width != width || entry->height != height; });
    auto const free = [](auto const& entry) { return entry->loans.load(std::memory_order_acquire) == 0; };
    if (latest && free(latest) && std::ranges::find(canvases, latest) != canvases.end()) {
        return latest;
    }
    if (auto const found = std::ranges::find_if(canvases, free); found != canvases.end()) {
        return *found;
    }
    if (canvases.size() >= kept_canvases) {
        canvases.erase(canvases.begin());  // goes when its last reader is done
    }
    canvases.push_back(std::make_shared<canvas>(width, height));
    return canvases.back();
}

picture view_surface::lend(std::shared_ptr<canvas> const& lender) {
    auto pixels = lender->loan.lock();
    if (!pixels) {
        // A count, for the last reader's release may still be under way when the next loan begins.
        lender->loans.fetch_add(1, std::memory_order_relaxed);
        pixels = std::shared_ptr<uint8_t>(lender->pixels.get(), [lender = lender](uint8_t*) mutable {
            // The weak reference in the canvas keeps this function alive, so it must let go of the canvas.
            auto const canvas = std::move(lender);
            canvas->loans.fetch_sub(1, std::memory_order_release);
        });
        lender->loan = pixels;
    }
    return {lender->width, lender->height, std::move(pixels)};
}

/// False if the widget had nothing to paint, as when the page's process has died: an earlier picture, which
/// the memory was used for before, would come back then.
bool view_surface::paint(canvas& target) {
    // A size that was asked for since the last frame has to arrive first: GTK draws only what is laid out.
    gtk_container_check_resize(GTK_CONTAINER(gtk_widget_get_toplevel(widget)));
    cairo_objects const cairo(target.pixels.get(), target.width, target.height);
    auto const allocated_width = gtk_widget_get_allocated_width(widget);
    auto const allocated_height = gtk_widget_get_allocated_height(widget);
    int requested_width = -1;
    int requested_height = -1;
    gtk_widget_get_size_request(widget, &requested_width, &requested_height);
    double const scale_x = requested_width > 0 ? static_cast<double>(target.width) / requested_width : 1;
    double const scale_y = requested_height > 0 ? static_cast<double>(target.height) / requested_height : 1;
    cairo_scale(cairo.context, scale_x, scale_y);
    gdk_cairo_region(cairo.context, target.stale);
    cairo_clip(cairo.context);
    cairo_set_operator(cairo.context, CAIRO_OPERATOR_SOURCE);
    cairo_set_source_rgba(cairo.context, 0, 0, 0, 0);
    if (!opaque || allocated_width * scale_x < target.width || allocated_height * scale_y < target.height) {
        cairo_paint(cairo.context);  // what the widget does not cover
    }
    cairo_set_operator(cairo.context, CAIRO_OPERATOR_OVER);
    cairo_surface_flush(cairo.surface);
    witness seen(opaque ? stale_pixel(target, allocated_width, allocated_height, scale_x, scale_y) : nullptr);
    cairo_surface_mark_dirty(cairo.surface);
    painting = true;
    gtk_widget_draw(widget, cairo.context);
    painting = false;
    cairo_surface_flush(cairo.surface);
    if (!seen.has_seen_paint()) {
        return false;
    }
    cairo_region_destroy(target.stale);
    target.stale = cairo_region_create();
    return true;
}

/// A pixel that the widget is about to paint, if there is one.
uint32_t* view_surface::stale_pixel(canvas const& target, int allocated_width, int allocated_height,
                                    double scale_x, double scale_y) {
    cairo_rectangle_int_t const area{0, 0, allocated_width, allocated_height};
    auto* const visible = cairo_region_copy(target.stale);
    cairo_region_intersect_rectangle(visible, &area);
    bool const any = cairo_region_num_rectangles(visible) > 0;
    cairo_rectangle_int_t first{};
    if (any) {
        cairo_region_get_rectangle(visible, 0, &first);
    }
    cairo_region_destroy(visible);
    int const middle_x = first.x + first.width / 2;
    int const middle_y = first.y + first.height / 2;
    auto const x = static_cast<int>(middle_x * scale_x);
    auto const y = static_cast<int>(middle_y * scale_y);
    if (!any || x >= target.width || y >= target.height) {
        return nullptr;
    }
    auto const index = static_cast<size_t>(y) * static_cast<size_t>(target.width) + static_cast<size_t>(x);
    return reinterpret_cast<uint32_t*>(target.pixels.get()) + index;
}

}  // namespace runtime
