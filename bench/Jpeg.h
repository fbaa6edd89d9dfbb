#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace zarvik::bench {

struct JpegSize {
    int width = 0;
    int height = 0;
};

/// Decodes a JPEG picture into BGRA pixels without gaps, and gives its size. Throws std::runtime_error if it
/// is none.
JpegSize decodeJpeg(std::span<const std::uint8_t> jpeg, std::vector<std::uint8_t>& pixels);

}  // namespace zarvik::bench
