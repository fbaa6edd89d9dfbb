#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

#include "Camera.h"
#include "Stage.h"
#include "zarvik/host/View.h"

namespace zarvik::player {

/// Everything that is in the window at one moment: what the painter draws and what the mouse meets. The
/// toolbar lies on top, along the upper edge.
struct Scenery {
    static constexpr int toolbarHeight = 52;

    struct Page {
        const host::View* view = nullptr;
        host::Size size;

        bool operator==(const Page& other) const { return view == other.view; }
    };

    /// A pixel of a page.
    struct Target {
        Page page;
        std::optional<std::size_t> surface;  // nothing: the toolbar
        int x = 0;
        int y = 0;
    };

    std::shared_ptr<const Stage> stage;
    Camera camera;
    host::Size window;
    std::vector<Page> pages;  // of the stage's surfaces
    Page toolbar;

    /// What is under a point of the window; nothing where there is no page.
    std::optional<Target> under(Point windowPoint) const;

    /// Where in the window a pixel of a page can be met with the mouse; nothing if it is hidden, turned away
    /// or outside the window.
    std::optional<Point> windowPointOf(std::size_t surface, Point pixel) const;
};

}  // namespace zarvik::player
