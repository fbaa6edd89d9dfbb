#pragma once

#include "Sides.h"

namespace zarvik::bench {

/// Measures all pages on both sides by turns, so that the machine's other work meets both alike, and prints
/// the medians beside their targets. Throws std::runtime_error if something could not be measured.
void compareSides(int rounds, const Settings& settings);

}  // namespace zarvik::bench
