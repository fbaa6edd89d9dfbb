#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::Windows::UI {

/// A colour, not premultiplied.
struct Color {
    uint8_t A{};
    uint8_t R{};
    uint8_t G{};
    uint8_t B{};
    friend bool operator==(Color const&, Color const&) = default;
};

struct Colors {
    Colors() = delete;

    static Color Transparent() { return {0, 255, 255, 255}; }
    static Color White() { return {255, 255, 255, 255}; }
};

}  // namespace winrt::Windows::UI
