#include "Stage.h"

#include <algorithm>
#include <cmath>

namespace zarvik::player {

namespace {

// The surfaces stand on an arc around the viewer, the first one is the largest.
constexpr double arcRadius = 4;
constexpr double gap = 0.16;
constexpr double firstScale = 1.3;
constexpr double boxScale = 0.62;
constexpr double firstTurn = 0.14;
constexpr double boxTurn = 0.5;

constexpr double margin = 0.04;    // of the window, on each side
constexpr double cameraPitch = 5;  // degrees

Shape::Kind kindOf(std::size_t surface) {
    constexpr Shape::Kind kinds[] = {Shape::Kind::panel, Shape::Kind::curved, Shape::Kind::box};
    return kinds[surface % std::size(kinds)];
}

double scaleOf(std::size_t surface) {
    return surface == 0 ? firstScale : kindOf(surface) == Shape::Kind::box ? boxScale : 1;
}

}  // namespace

Stage::Stage(const std::vector<host::Size>& pages) {
    double length = -gap;  // of the arc
    for (std::size_t i = 0; i < pages.size(); ++i) {
        shapes.push_back(Shape::make(kindOf(i), pages[i]));
        length += shapes[i].width * scaleOf(i) + gap;
    }
    double begin = -length / 2;
    for (std::size_t i = 0; i < pages.size(); ++i) {
        const double width = shapes[i].width * scaleOf(i);
        const double angle = (begin + width / 2) / arcRadius;
        const double turn = -angle + (i == 0 ? firstTurn : kindOf(i) == Shape::Kind::box ? boxTurn : 0);
        shapes[i] = shapes[i].placed(scaleOf(i), turn,
                                     {arcRadius * std::sin(angle), 0, arcRadius * (1 - std::cos(angle))});
        begin += width + gap;
    }
}

std::optional<Stage::Hit> Stage::pick(const Ray& ray) const {
    std::optional<Shape::Hit> nearest;
    std::size_t surface = 0;
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        const auto hit = shapes[i].firstHit(ray);
        if (hit && (!nearest || hit->distance < nearest->distance)) {
            nearest = hit;
            surface = i;
        }
    }
    if (!nearest || !nearest->front) {
        return std::nullopt;
    }
    return Hit{.surface = surface, .page = nearest->page};
}

Camera Stage::camera(host::Size window, int toolbarHeight) const {
    std::vector<Vector> corners;
    double tallest = 1;
    for (const Shape& shape : shapes) {
        for (const auto& vertex : shape.vertices) {
            corners.push_back(vertex.position);
            tallest = std::max(tallest, vertex.position.y);
        }
    }
    Camera camera{.pitch = cameraPitch, .distance = Camera::nearest, .target = {0, tallest * 0.46, 0}};
    const double left = window.width * margin;
    const double top = toolbarHeight + window.height * margin;
    const auto visible = [&](const Vector& corner) {
        const auto point = camera.project(corner, window);
        return point && point->x >= left && point->x <= window.width - left && point->y >= top &&
               point->y <= window.height * (1 - margin);
    };
    while (camera.distance < Camera::farthest && !std::ranges::all_of(corners, visible)) {
        camera.distance += 0.05;
    }
    return camera.limited();
}

}  // namespace zarvik::player
