#pragma once

#include "Case.h"

namespace zarvik::bench {

enum class Side { library, bare };

/// As the option --side spells it.
const char* nameOf(Side side);

/// Measures in a process of its own: this program with the option --side. Throws std::runtime_error, naming
/// what was measured, if that process fails or hangs.
Figures measureInProcess(Side side, const Case& measured, const Settings& settings);

/// What that process does: measures and prints the figures.
void runSide(Side side, const Case& measured, const Settings& settings);

}  // namespace zarvik::bench
