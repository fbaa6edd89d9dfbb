#pragma once

#include "Case.h"

namespace zarvik::bench {

/// From the call of an input until the engine has a frame with what it changed.
Case inputCase(Size size, const std::string& name);
/// The same with many turns of the engine, so that hardly anything waits for the next one.
Case fastInputCase();

/// From the call of a script until the engine has a frame with what it changed.
Case scriptToPixelCase(Size size, const std::string& name);

/// From the start of the program until the engine has the first frame of a page.
Case startCase();

/// From the sudden end of the page's process until the engine has a frame of the page that was loaded again.
Case recoveryCase();

}  // namespace zarvik::bench
