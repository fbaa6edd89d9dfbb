#pragma once

#include <optional>

#include "Geometry.h"
#include "zarvik/host/GLContext.h"

namespace zarvik::player {

/// A camera that circles around a point and looks at it. A value: whoever draws or picks has a copy.
struct Camera {
    static constexpr double fieldOfView = 0.62;  // of the window's height, in radians
    static constexpr double nearest = 0.3;
    static constexpr double farthest = 40;
    static constexpr double steepest = 84;

    double yaw = 0;    // to the right around the target, in degrees
    double pitch = 0;  // upwards, in degrees
    double distance = 4;
    Vector target{};

    bool operator==(const Camera&) const = default;

    /// The same view with its values kept within their limits, above the floor, and rounded to what a script
    /// can say exactly.
    Camera limited() const;

    Vector position() const;
    Matrix worldToClip(host::Size window) const;

    /// What lies under a point of the window.
    Ray rayThrough(Point windowPoint, host::Size window) const;
    /// Where in the window a point of the scene appears; nothing if it is behind the camera.
    std::optional<Point> project(const Vector& point, host::Size window) const;

  private:
    struct Axes {
        Vector right;
        Vector up;
        Vector forward;
    };
    Axes axes() const;
};

}  // namespace zarvik::player
