#pragma once

#include <cstdint>
#include <span>
#include <vector>

/// Packed BGRA8 pixels, top row first. The bytes may be fewer than the size says.
struct PixelView {
    std::int32_t width;
    std::int32_t height;
    std::span<const std::uint8_t> bytes;
};

inline constexpr std::size_t bytesPerPixel = 4;

/// Copies a picture into a mapped texture of this size, as much of it as both have.
void copyToTexture(const PixelView& source, std::uint8_t* texture, std::uint32_t rowPitch,
                   std::uint32_t textureWidth, std::uint32_t textureHeight);

enum class RowOrder { topDown, bottomUp };

/// The picture clipped or filled up with zero bytes, at the right and at the bottom, to the size.
std::vector<std::uint8_t> fitPixels(const PixelView& source, std::int32_t width, std::int32_t height,
                                    RowOrder order);
