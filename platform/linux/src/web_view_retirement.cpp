// The end of a browser widget. Destroyed while it animates, the engine's library may wait for its page
// process while that waits for the library; so the process is ended first, and the widgets go in later turns
// of the loop, one step each.

#include <deque>

#include "native_window.h"
#include "web_view.h"

namespace runtime {

namespace {

std::deque<std::function<void()>>& steps() {
    static auto* const queue = new std::deque<std::function<void()>>();
    return *queue;
}

gboolean run_step(gpointer) {
    auto const step = std::move(steps().front());
    steps().pop_front();
    step();
    return steps().empty() ? G_SOURCE_REMOVE : G_SOURCE_CONTINUE;
}

void add_step(std::function<void()> step) {
    if (steps().empty()) {
        g_idle_add_full(G_PRIORITY_DEFAULT, run_step, nullptr, nullptr);
    }
    steps().push_back(std::move(step));
}

}  // namespace

void retire_view(gobject_ptr<GtkWidget> widget, gobject_ptr<GtkWidget> offscreen_window) {
    // The engine's own handlers stay; what it still reports goes to nobody.
    webkit_web_view_stop_loading(WEBKIT_WEB_VIEW(widget.get()));
    add_step([widget] {
        gtk_widget_hide(widget.get());
        webkit_web_view_terminate_web_process(WEBKIT_WEB_VIEW(widget.get()));
    });
    add_step([widget, offscreen_window = std::move(offscreen_window)] {
        native_window::instance().remove(widget.get());
        gtk_widget_destroy(offscreen_window.get());
    });
    add_step([widget] { gtk_widget_destroy(widget.get()); });
}

}  // namespace runtime
