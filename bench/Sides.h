#pragma once

#include <chrono>

#include "Measurement.h"
#include "Pages.h"

namespace zarvik::bench {

/// How long a page runs before the window begins: starting processes and loading are not measured.
inline constexpr std::chrono::milliseconds warmUp{2000};

struct Settings {
    double seconds = 4;  // of the measured window
    double rate = 60;    // turns of the engine's render thread per second
};

/// Each side needs a process of its own, as it takes GTK and the default main context for itself. Both throw
/// std::exception with the reason if the page cannot be measured.

/// The library in the host engine: a frame is one upload into the engine's texture.
Measurement measureLibrary(const PageText& page, const Settings& settings);

/// The browser engine alone, as cheap as it is known to be: pictures of an offscreen window without
/// accelerated compositing, read into memory of our own where the page has changed. A frame is one reading.
Measurement measureBareLoop(const PageText& page, const Settings& settings);

}  // namespace zarvik::bench
