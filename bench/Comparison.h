#pragma once

#include <vector>

#include "Case.h"

namespace zarvik::bench {

/// Measures the cases on both sides by turns, so that the machine's other work meets both alike, and prints
/// the medians beside their targets. Throws std::runtime_error if something could not be measured.
void compareSides(const std::vector<const Case*>& compared, int rounds, const Settings& settings);

}  // namespace zarvik::bench
