#pragma once

#include <vector>

#include "Case.h"
#include "Side.h"

namespace zarvik::bench {

/// Measures the cases on the sides by turns, so that the machine's other work meets all alike, and prints a
/// table in Markdown: the medians, what share the library's are of the others', and the targets. Progress
/// goes to standard error. What could not be measured has no figure; at the end it is what the
/// std::runtime_error says that is then thrown.
void compareSides(const std::vector<const Case*>& compared, const std::vector<Side>& sides, int rounds,
                  const Settings& settings);

}  // namespace zarvik::bench
