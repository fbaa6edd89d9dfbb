#include "Shape.h"

#include <cmath>

namespace zarvik::player {

namespace {

constexpr double pageArea = 1.44;
constexpr double aboveFloor = 0.06;
constexpr double bend = 1.1;  // of the curved surface, in radians
constexpr int strips = 48;
constexpr double edgeTolerance = 1e-9;  // a ray through the edge of two triangles meets one of them

struct Size {
    double width = 0;
    double height = 0;
};

Size sizeOf(host::Size page) {
    const double aspect = static_cast<double>(page.width) / page.height;
    const double height = std::sqrt(pageArea / aspect);
    return {.width = height * aspect, .height = height};
}

/// Adds an upright strip whose left and right edges stand at two places, showing the page from one part of
/// its width to another.
void addStrip(Shape& shape, const Vector& left, const Vector& right, double from, double to) {
    const auto first = static_cast<std::uint32_t>(shape.vertices.size());
    const Vector up{0, shape.height, 0};
    shape.vertices.push_back({left + up, {from, 0}});
    shape.vertices.push_back({left, {from, 1}});
    shape.vertices.push_back({right + up, {to, 0}});
    shape.vertices.push_back({right, {to, 1}});
    for (const std::uint32_t corner : {0, 1, 2, 2, 1, 3}) {
        shape.triangles.push_back(first + corner);
    }
}

/// The weights of the second and the third corner at which a ray meets a triangle, and the distance.
struct Meeting {
    double distance = 0;
    double second = 0;
    double third = 0;
    bool front = false;
};

std::optional<Meeting> meet(const Ray& ray, const Vector& a, const Vector& b, const Vector& c) {
    const Vector ab = b - a;
    const Vector ac = c - a;
    const Vector normal = cross(ray.direction, ac);
    const double determinant = dot(ab, normal);
    if (std::abs(determinant) < 1e-12) {
        return std::nullopt;  // seen edge-on
    }
    const Vector offset = ray.origin - a;
    const double second = dot(offset, normal) / determinant;
    const Vector across = cross(offset, ab);
    const double third = dot(ray.direction, across) / determinant;
    const double distance = dot(ac, across) / determinant;
    if (second < -edgeTolerance || third < -edgeTolerance || second + third > 1 + edgeTolerance ||
        distance <= 0) {
        return std::nullopt;
    }
    return Meeting{.distance = distance, .second = second, .third = third, .front = determinant > 0};
}

double mixed(double a, double b, double c, const Meeting& at) {
    return a + (b - a) * at.second + (c - a) * at.third;
}

}  // namespace

std::optional<Shape::Hit> Shape::firstHit(const Ray& ray) const {
    std::optional<Hit> nearest;
    for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) {
        const Vertex& a = vertices[triangles[i]];
        const Vertex& b = vertices[triangles[i + 1]];
        const Vertex& c = vertices[triangles[i + 2]];
        const auto meeting = meet(ray, a.position, b.position, c.position);
        if (meeting && (!nearest || meeting->distance < nearest->distance)) {
            nearest = Hit{.distance = meeting->distance,
                          .page = {mixed(a.page.x, b.page.x, c.page.x, *meeting),
                                   mixed(a.page.y, b.page.y, c.page.y, *meeting)},
                          .front = meeting->front};
        }
    }
    return nearest;
}

std::vector<Vector> Shape::placesOf(Point page) const {
    std::vector<Vector> places;
    // Each four vertices are a strip: see addStrip.
    for (std::size_t i = 0; i + 3 < vertices.size(); i += 4) {
        const Vertex& topLeft = vertices[i];
        const Vertex& bottomLeft = vertices[i + 1];
        const Vertex& topRight = vertices[i + 2];
        if (page.x >= topLeft.page.x && page.x <= topRight.page.x) {
            const double across = (page.x - topLeft.page.x) / (topRight.page.x - topLeft.page.x);
            places.push_back(topLeft.position + (topRight.position - topLeft.position) * across +
                             (bottomLeft.position - topLeft.position) * page.y);
        }
    }
    return places;
}

Shape Shape::make(Kind kind, host::Size page) {
    const auto [width, height] = sizeOf(page);
    Shape shape;
    shape.framed = kind != Kind::box;
    shape.width = width;
    shape.height = height;
    const double half = width / 2;
    switch (kind) {
        case Kind::panel:
            addStrip(shape, {-half, aboveFloor, 0}, {half, aboveFloor, 0}, 0, 1);
            break;
        case Kind::curved: {
            const double radius = width / bend;
            const auto at = [&](int strip) {
                const double angle = bend * (static_cast<double>(strip) / strips - 0.5);
                return Vector{radius * std::sin(angle), aboveFloor, radius * (1 - std::cos(angle))};
            };
            for (int strip = 0; strip < strips; ++strip) {
                addStrip(shape, at(strip), at(strip + 1), static_cast<double>(strip) / strips,
                         static_cast<double>(strip + 1) / strips);
            }
            break;
        }
        case Kind::box:
            addStrip(shape, {-half, aboveFloor, half}, {half, aboveFloor, half}, 0, 1);
            addStrip(shape, {half, aboveFloor, half}, {half, aboveFloor, -half}, 0, 1);
            addStrip(shape, {half, aboveFloor, -half}, {-half, aboveFloor, -half}, 0, 1);
            addStrip(shape, {-half, aboveFloor, -half}, {-half, aboveFloor, half}, 0, 1);
            break;
    }
    return shape;
}

Shape Shape::placed(double scale, double turn, const Vector& offset) const {
    Shape result = *this;
    result.width *= scale;
    result.height *= scale;
    const double sine = std::sin(turn);
    const double cosine = std::cos(turn);
    for (Vertex& vertex : result.vertices) {
        const Vector p = vertex.position * scale;
        vertex.position = Vector{p.x * cosine + p.z * sine, p.y, p.z * cosine - p.x * sine} + offset;
    }
    return result;
}

}  // namespace zarvik::player
