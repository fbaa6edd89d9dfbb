#pragma once

#include <map>
#include <string>
#include <vector>

namespace zarvik::bench {

/// What a side measured, by name. A name has no blanks.
using Figures = std::map<std::string, double>;

/// As text, in which a side's process hands them to the comparing one.
std::string toText(const Figures& figures);

/// Throws std::runtime_error if the text is not that of figures.
Figures figuresFrom(const std::string& text);

/// What the given share of the values does not exceed: 0.5 is the median. There must be a value.
double quantile(std::vector<double> values, double share);

}  // namespace zarvik::bench
