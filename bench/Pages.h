#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace zarvik::bench {

inline constexpr int pageWidth = 1280;
inline constexpr int pageHeight = 720;

enum class Page { elements, canvas, still };

struct PageText {
    Page page;
    const char* option;  // on the command line of a side's process
    const char* title;   // in the table
    std::string html;
};

/// All pages, each of which moves in its own way. Their upper left pixel has the colour of `cornerPixel`, so
/// that a side which shows something else cannot be measured by mistake.
const std::array<PageText, 3>& pages();
const PageText& textOf(Page page);

/// BGRA, premultiplied.
inline constexpr std::array<std::uint8_t, 4> cornerPixel{0x70, 0x48, 0x20, 0xff};

/// Throws std::runtime_error unless this is the corner of one of our pages.
void expectCorner(const std::array<std::uint8_t, 4>& pixel);

}  // namespace zarvik::bench
