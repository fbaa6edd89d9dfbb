#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zarvik::host {

/// A picture in the layout of the web view's frames: BGRA, premultiplied, tightly packed, top row first.
struct Image {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    using Pixel = std::array<std::uint8_t, 4>;

    Image() = default;
    Image(int width, int height)
        : width(width), height(height), pixels(static_cast<std::size_t>(width) * height * 4) {}

    Pixel at(int x, int y) const {
        const std::size_t i = (static_cast<std::size_t>(y) * width + x) * 4;
        return {pixels.at(i), pixels.at(i + 1), pixels.at(i + 2), pixels.at(i + 3)};
    }

    bool operator==(const Image&) const = default;
};

}  // namespace zarvik::host
