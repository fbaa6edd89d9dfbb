#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Geometry.h"
#include "zarvik/host/GLContext.h"

namespace zarvik::player {

/// A surface that shows a page, as triangles in the scene. What is drawn is what is hit: picking uses the
/// very triangles that the renderer draws.
struct Shape {
    struct Vertex {
        Vector position;
        Point page;  // (0, 0) is the page's upper left corner, (1, 1) its lower right one
    };
    struct Hit {
        double distance = 0;
        Point page;
        bool front = false;  // the page is only on the front, which is seen counter-clockwise
    };

    enum class Kind { panel, curved, box };

    std::vector<Vertex> vertices;
    std::vector<std::uint32_t> triangles;  // three numbers each
    bool framed = false;                   // has an outer edge, which is drawn with round corners
    double width = 0;                      // of the page on it, in the scene's units
    double height = 0;

    /// The first triangle that a ray meets.
    std::optional<Hit> firstHit(const Ray& ray) const;
    /// Every place where a point of the page appears: of a box one on each side.
    std::vector<Vector> placesOf(Point page) const;

    /// A surface for a page of this size, standing on the floor at the origin and facing the viewer. All
    /// pages get the same area, whatever their sizes are.
    static Shape make(Kind kind, host::Size page);
    /// Made larger, turned to the right and moved.
    Shape placed(double scale, double turn, const Vector& offset) const;
};

}  // namespace zarvik::player
