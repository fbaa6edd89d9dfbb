#pragma once

#include "Case.h"

namespace zarvik::bench {

/// What each further view takes, once there is one.
Case memoryCase(Size size, const std::string& name);

}  // namespace zarvik::bench
