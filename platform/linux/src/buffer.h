#pragma once

#include <cstdint>
#include <memory>

#include <winrt/base.h>

namespace runtime {

/// A run of bytes behind an IBuffer. The memory is shared, never copied.
struct buffer_object : winrt::impl::object {
    buffer_object(std::shared_ptr<uint8_t> bytes, uint32_t length)
        : bytes(std::move(bytes)), length(length) {}

    std::shared_ptr<uint8_t> bytes;
    uint32_t length;
};

}  // namespace runtime
