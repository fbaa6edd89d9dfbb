#pragma once

#include <cstdint>
#include <vector>

#include "stream.h"

namespace runtime {

/// A picture on its way into a file: BGRA, 8 bits a channel, premultiplied, rows without gaps.
struct unencoded_picture {
    uint32_t width;
    uint32_t height;
    double dpi_x;
    double dpi_y;
    std::vector<uint8_t> pixels;
};

/// Encodes as PNG, with straight alpha and the resolution. Takes its time: not for the user-interface thread.
stream_content encode_png(unencoded_picture picture);

}  // namespace runtime
