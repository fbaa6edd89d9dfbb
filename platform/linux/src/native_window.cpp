#include "native_window.h"

#include "ui_thread.h"

namespace runtime {

namespace {

GdkMonitor* first_monitor() {
    GdkDisplay* const display = gdk_display_get_default();
    GdkMonitor* const primary = gdk_display_get_primary_monitor(display);
    return primary ? primary : gdk_display_get_monitor(display, 0);
}

}  // namespace

native_window& native_window::instance() {
    ui_thread::require_current();
    static auto* const window = new native_window();  // GTK objects are not touched when the process ends
    return *window;
}

native_window::extent native_window::size() const {
    if (window && gtk_widget_get_visible(window)) {
        return {gtk_widget_get_allocated_width(layout), gtk_widget_get_allocated_height(layout)};
    }
    GdkRectangle area{};
    gdk_monitor_get_workarea(first_monitor(), &area);
    return {area.width, area.height};
}

int native_window::scale_factor() const {
    return gdk_monitor_get_scale_factor(first_monitor());
}

void native_window::place(GtkWidget* widget, int x, int y) {
    if (!window) {
        auto const initial = size();
        window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
        gtk_window_set_default_size(GTK_WINDOW(window), initial.width, initial.height);
        // Closing is the app's business; without an answer the window would be destroyed under its views.
        g_signal_connect(window, "delete-event", G_CALLBACK(gtk_true), nullptr);
        layout = gtk_fixed_new();
        gtk_container_add(GTK_CONTAINER(window), layout);
    }
    if (gtk_widget_get_parent(widget) == layout) {
        gtk_fixed_move(GTK_FIXED(layout), widget, x, y);
        return;
    }
    gtk_fixed_put(GTK_FIXED(layout), widget, x, y);
    if (placed++ == 0) {
        gtk_widget_show_all(window);
    }
}

void native_window::remove(GtkWidget* widget) {
    if (layout && gtk_widget_get_parent(widget) == layout) {
        gtk_container_remove(GTK_CONTAINER(layout), widget);
        if (--placed == 0) {
            gtk_widget_hide(window);
        }
    }
}

}  // namespace runtime
