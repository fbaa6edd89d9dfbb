#pragma once

#include <array>
#include <memory>
#include <optional>
#include <string>

#include "Subject.h"

namespace zarvik::bench {

/// What is compared. The library comes first: the others are what it is measured against.
enum class Side { library, bare, chromium, qt };

inline constexpr std::array allSides{Side::library, Side::bare, Side::chromium, Side::qt};

/// As the option --side spells it.
const char* nameOf(Side side);

/// Whether its browser is installed and its program was built.
bool available(Side side);

/// Its program, if it is installed.
std::optional<std::string> findChromium();

/// Makes the side in this process. Throws std::runtime_error if it does not work, or if it belongs to the
/// other of the two programs.
std::unique_ptr<Subject> makeSubject(Side side, const Setup& setup);

}  // namespace zarvik::bench
