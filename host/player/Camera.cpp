#include "Camera.h"

#include <algorithm>
#include <cmath>

namespace zarvik::player {

namespace {

constexpr double nearPlane = 0.05;
constexpr double farPlane = 100;
constexpr double lowestEye = 0.05;

const double halfHeight = std::tan(Camera::fieldOfView / 2);  // of the window, at distance 1

constexpr double radiansPerDegree = M_PI / 180;

double toHundredths(double value) {
    return std::round(value * 100) / 100;
}

double aspectOf(host::Size window) {
    return static_cast<double>(window.width) / window.height;
}

}  // namespace

Camera Camera::limited() const {
    const double reach = std::clamp(distance, nearest, farthest);
    const double lowest = std::asin(std::clamp((lowestEye - target.y) / reach, -1.0, 0.0)) / radiansPerDegree;
    return {.yaw = toHundredths(std::remainder(yaw, 360)),
            .pitch = toHundredths(std::clamp(pitch, std::max(lowest, -steepest), steepest)),
            .distance = toHundredths(reach),
            .target = target};
}

Camera::Axes Camera::axes() const {
    const double around = yaw * radiansPerDegree;
    const double above = pitch * radiansPerDegree;
    const Vector forward{-std::cos(above) * std::sin(around), -std::sin(above),
                         -std::cos(above) * std::cos(around)};
    const Vector right = normalised(cross(forward, {0, 1, 0}));
    return {.right = right, .up = cross(right, forward), .forward = forward};
}

Vector Camera::position() const {
    return target - axes().forward * distance;
}

Matrix Camera::worldToClip(host::Size window) const {
    const auto [right, up, forward] = axes();
    const Vector eye = position();
    const Matrix worldToCamera{right.x,          up.x,          -forward.x,        0,  //
                               right.y,          up.y,          -forward.y,        0,  //
                               right.z,          up.z,          -forward.z,        0,  //
                               -dot(right, eye), -dot(up, eye), dot(forward, eye), 1};
    const double depth = nearPlane - farPlane;
    const Matrix cameraToClip{1 / (halfHeight * aspectOf(window)),
                              0,
                              0,
                              0,  //
                              0,
                              1 / halfHeight,
                              0,
                              0,  //
                              0,
                              0,
                              (farPlane + nearPlane) / depth,
                              -1,  //
                              0,
                              0,
                              2 * farPlane * nearPlane / depth,
                              0};
    return cameraToClip * worldToCamera;
}

Ray Camera::rayThrough(Point windowPoint, host::Size window) const {
    const auto [right, up, forward] = axes();
    const double x = (2 * windowPoint.x / window.width - 1) * halfHeight * aspectOf(window);
    const double y = (1 - 2 * windowPoint.y / window.height) * halfHeight;
    return {.origin = position(), .direction = normalised(forward + right * x + up * y)};
}

std::optional<Point> Camera::project(const Vector& point, host::Size window) const {
    const auto [right, up, forward] = axes();
    const Vector offset = point - position();
    const double depth = dot(offset, forward);
    if (depth < nearPlane) {
        return std::nullopt;
    }
    const double x = dot(offset, right) / (depth * halfHeight * aspectOf(window));
    const double y = dot(offset, up) / (depth * halfHeight);
    return Point{(x + 1) / 2 * window.width, (1 - y) / 2 * window.height};
}

}  // namespace zarvik::player
