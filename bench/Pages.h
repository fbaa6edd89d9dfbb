#pragma once

#include <array>
#include <string>

#include "Subject.h"

namespace zarvik::bench {

/// The upper left pixel of the three pages below, so that a side which shows something else cannot be
/// measured by mistake. What is around it has the same colour, so that a lossy picture has it too.
inline constexpr Pixel cornerPixel{0x70, 0x48, 0x20, 0xff};

/// Elements that move, turn, fade and change their colour all over the page.
std::string elementsPage();
/// Every frame repaints all of the page but its corner.
std::string canvasPage();
std::string stillPage();

/// Has a function `evaluate(text)` that gives what the text evaluates to, as a string.
std::string scriptPage();

/// Has the same function. Its function `change()`, and each press of the pointer on the block around this
/// point, gives the block the next of the colours.
std::string blockPage();
inline constexpr Point blockPoint{360, 360};
inline constexpr std::array<Pixel, 2> blockColours{{{0x60, 0x30, 0xc0, 0xff}, {0x60, 0xa0, 0x30, 0xff}}};

}  // namespace zarvik::bench
