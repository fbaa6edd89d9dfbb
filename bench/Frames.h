#pragma once

#include "Case.h"

namespace zarvik::bench {

/// Frames and processor time of pages that move, and what a page at rest costs.
Case elementsCase(int views, Size size, const std::string& name);
Case canvasCase(int views, Size size, const std::string& name);
Case stillCase(int views, Size size, const std::string& name);

}  // namespace zarvik::bench
