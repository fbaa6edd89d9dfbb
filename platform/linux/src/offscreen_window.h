#pragma once

#include <gtk/gtk.h>

namespace runtime {

/// A window without a place on the screen, as a GtkOffscreenWindow. What is in one of those is in no window
/// at all for the browser engine, which then loads no media; so it is a type of its own.
GtkWidget* make_offscreen_window();

}  // namespace runtime
