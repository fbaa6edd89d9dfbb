#pragma once

#include <memory>

#include <winrt/base.h>

namespace runtime {

/// A composed picture: BGRA, 8 bits a channel, premultiplied, rows without gaps, first row at the top. It
/// does not change once it has been handed out, so everybody shares the same memory.
struct picture {
    int32_t width = 0;
    int32_t height = 0;
    std::shared_ptr<uint8_t> pixels;

    uint32_t size() const noexcept {
        return static_cast<uint32_t>(width) * static_cast<uint32_t>(height) * 4;
    }
};

}  // namespace runtime
