#pragma once

#include <array>
#include <cmath>

namespace zarvik::player {

/// A point or a direction of the scene: x to the right, y up, z towards the viewer.
struct Vector {
    double x = 0;
    double y = 0;
    double z = 0;

    bool operator==(const Vector&) const = default;
};

inline Vector operator+(const Vector& a, const Vector& b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Vector operator-(const Vector& a, const Vector& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Vector operator*(const Vector& a, double factor) {
    return {a.x * factor, a.y * factor, a.z * factor};
}
inline double dot(const Vector& a, const Vector& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vector cross(const Vector& a, const Vector& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline Vector normalised(const Vector& a) {
    return a * (1 / std::sqrt(dot(a, a)));
}

/// A point of a flat area. Of a window: pixels from its upper left corner. Of a page: parts of its size.
struct Point {
    double x = 0;
    double y = 0;

    bool operator==(const Point&) const = default;
};

struct Ray {
    Vector origin;
    Vector direction;
};

/// Column by column, as OpenGL has it.
using Matrix = std::array<double, 16>;

inline Matrix operator*(const Matrix& a, const Matrix& b) {
    Matrix product{};
    for (std::size_t column = 0; column < 4; ++column) {
        for (std::size_t row = 0; row < 4; ++row) {
            for (std::size_t i = 0; i < 4; ++i) {
                product[column * 4 + row] += a[i * 4 + row] * b[column * 4 + i];
            }
        }
    }
    return product;
}

}  // namespace zarvik::player
