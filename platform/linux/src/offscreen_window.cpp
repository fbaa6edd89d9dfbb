#include "offscreen_window.h"

namespace runtime {

namespace {

/// All that makes a window an offscreen one are these functions.
void set_up_class(gpointer type_class, gpointer) {
    gpointer const model = g_type_class_ref(GTK_TYPE_OFFSCREEN_WINDOW);  // kept, as its functions are
    auto const* const model_widget = GTK_WIDGET_CLASS(model);
    auto* const widget = GTK_WIDGET_CLASS(type_class);
    widget->realize = model_widget->realize;
    widget->show = model_widget->show;
    widget->hide = model_widget->hide;
    widget->get_preferred_width = model_widget->get_preferred_width;
    widget->get_preferred_height = model_widget->get_preferred_height;
    widget->size_allocate = model_widget->size_allocate;
    GTK_CONTAINER_CLASS(type_class)->check_resize = GTK_CONTAINER_CLASS(model)->check_resize;
}

}  // namespace

GtkWidget* make_offscreen_window() {
    static GType const type = g_type_register_static_simple(
        GTK_TYPE_WINDOW, "RuntimeOffscreenWindow", sizeof(GtkOffscreenWindowClass), set_up_class,
        sizeof(GtkOffscreenWindow), nullptr, G_TYPE_FLAG_NONE);
    return GTK_WIDGET(g_object_new(type, nullptr));
}

}  // namespace runtime
