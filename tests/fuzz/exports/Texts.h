#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Texts that mean something to a parameter of this name, the ordinary ones first; none for a parameter that
/// takes no text.
const std::vector<std::string>& textsFor(std::string_view parameter);
