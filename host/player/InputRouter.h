#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "Scenery.h"
#include "Statistics.h"
#include "Step.h"
#include "zarvik/host/Plugin.h"

namespace zarvik::player {

/// The way of all input, as in any engine: from a point of the window along a ray to a surface, to a pixel of
/// its page, and into the plug-in. Keys go to the page that has the focus. Main thread.
class InputRouter {
  public:
    enum class Receiver { nobody, toolbar, page };

    InputRouter(const host::PluginExports& plugin, Statistics& statistics)
        : plugin(plugin), statistics(statistics) {}

    /// What the mouse meets from now on.
    void setScenery(Scenery next) { scenery = std::move(next); }

    // Each says who received it; of a move that leaves one and enters another, the page counts.
    Receiver move(Point windowPoint);
    Receiver press(Point windowPoint, Button button, int clickCount);
    Receiver release(Point windowPoint, Button button, int clickCount);
    Receiver scroll(Point windowPoint, Point delta);
    Receiver scrollPage(Point delta);
    Receiver type(const std::string& text);
    Receiver key(const std::string& name);

    void focusPage(std::size_t surface);
    void focusToolbar();
    /// The page that was used last.
    std::size_t currentPage() const { return current; }

  private:
    enum class Focus { nobody, toolbar, page };

    Receiver leave();
    void setFocus(Focus next, std::size_t surface);
    void tellFocus(bool focused) const;
    const Scenery::Page* focusedPage() const;
    Receiver receiverOf(const Scenery::Target& target) const;
    void noteInput(const Scenery::Page& page);
    std::optional<Scenery::Target>& held(Button button);

    const host::PluginExports& plugin;
    Statistics& statistics;
    Scenery scenery;
    Focus focus = Focus::nobody;
    std::size_t current = 0;
    std::optional<Scenery::Target> hovered;
    std::array<std::optional<Scenery::Target>, 3>
        pressed;  // for each button, what gets all moves until the release
};

}  // namespace zarvik::player
