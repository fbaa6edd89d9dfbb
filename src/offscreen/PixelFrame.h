#pragma once

#include <cstdint>
#include <span>
#include <utility>
#include <variant>

#include "platform.h"

/// One captured picture: BGRA8 pixels, premultiplied, rows packed at width x 4 bytes, top row first. It keeps
/// the platform's memory alive instead of copying it. Immutable, shared between the UI thread and the render
/// thread.
class PixelFrame {
  public:
    PixelFrame(std::int32_t width, std::int32_t height, streams::IBuffer buffer)
        : width(width), height(height), owner(buffer), bytes(buffer.data(), buffer.Length()) {}

    PixelFrame(std::int32_t width, std::int32_t height, winrt::com_array<std::uint8_t> pixels)
        : width(width),
          height(height),
          owner(std::move(pixels)),
          bytes(std::get<1>(owner).data(), std::get<1>(owner).size()) {}

    PixelFrame(const PixelFrame&) = delete;
    PixelFrame& operator=(const PixelFrame&) = delete;

    const std::int32_t width;
    const std::int32_t height;

  private:
    const std::variant<streams::IBuffer, winrt::com_array<std::uint8_t>> owner;

  public:
    const std::span<const std::uint8_t> bytes;
};
