#pragma once

#include <optional>

#include "Case.h"
#include "Side.h"

namespace zarvik::bench {

/// Measures in a process of its own: the side's program with the option --side. Nothing if the side cannot do
/// what is measured. Throws std::runtime_error, naming what was measured, if that process fails or hangs.
std::optional<Figures> measureInProcess(Side side, const Case& measured, const Settings& settings);

/// What that process does: measures and prints the figures.
void runSide(Side side, const Case& measured, const Settings& settings);

}  // namespace zarvik::bench
