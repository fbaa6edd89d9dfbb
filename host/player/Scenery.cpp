#include "Scenery.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace zarvik::player {

namespace {

int pixelAt(double part, int count) {
    return std::clamp(static_cast<int>(std::floor(part * count)), 0, count - 1);
}

}  // namespace

std::optional<Scenery::Target> Scenery::under(Point windowPoint) const {
    if (windowPoint.x < 0 || windowPoint.y < 0 || windowPoint.x >= window.width ||
        windowPoint.y >= window.height) {
        return std::nullopt;
    }
    if (windowPoint.y < toolbarHeight) {
        return Target{.page = toolbar,
                      .surface = std::nullopt,
                      .x = static_cast<int>(windowPoint.x),
                      .y = static_cast<int>(windowPoint.y)};
    }
    const auto hit = stage->pick(camera.rayThrough(windowPoint, window));
    if (!hit) {
        return std::nullopt;
    }
    const Page& page = pages[hit->surface];
    return Target{.page = page,
                  .surface = hit->surface,
                  .x = pixelAt(hit->page.x, page.size.width),
                  .y = pixelAt(hit->page.y, page.size.height)};
}

std::optional<Point> Scenery::windowPointOf(std::size_t surface, Point pixel) const {
    const host::Size size = pages[surface].size;
    // The middle of the pixel, so that rounding on the way there and back does no harm.
    const Point middle{(std::floor(pixel.x) + 0.5) / size.width, (std::floor(pixel.y) + 0.5) / size.height};
    for (const Vector& place : stage->surfaces()[surface].placesOf(middle)) {
        const auto point = camera.project(place, window);
        const auto target = point ? under(*point) : std::nullopt;
        if (target && target->surface == surface && target->x == static_cast<int>(std::floor(pixel.x)) &&
            target->y == static_cast<int>(std::floor(pixel.y))) {
            return point;
        }
    }
    return std::nullopt;
}

}  // namespace zarvik::player
