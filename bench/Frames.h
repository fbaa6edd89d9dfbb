#pragma once

#include "Case.h"

namespace zarvik::bench {

// Frames per second and processor time of pages that move in different ways, and of one that does not.
Case elementsCase();
Case canvasCase();
Case stillCase();

}  // namespace zarvik::bench
