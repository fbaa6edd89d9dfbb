#pragma once

#include <gtk/gtk.h>

namespace runtime {

/// The app's window on the desktop. It appears with the first element that is to be seen in it and goes with
/// the last one; offscreen views need none. User-interface thread only.
class native_window {
  public:
    struct extent {
        int width;
        int height;
    };

    static native_window& instance();

    /// The window's client area in view pixels; what it would be while it is not shown.
    extent size() const;

    /// Device pixels per view pixel of the display.
    int scale_factor() const;

    /// Shows a widget at a place. The window holds the widget.
    void place(GtkWidget* widget, int x, int y);

    /// Takes a widget out; the caller must hold a reference to it.
    void remove(GtkWidget* widget);

  private:
    GtkWidget* window = nullptr;
    GtkWidget* layout = nullptr;
    int placed = 0;
};

}  // namespace runtime
