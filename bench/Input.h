#pragma once

#include "Case.h"

namespace zarvik::bench {

/// How long it takes from an input call until the engine has a frame that shows what the page made of it.
Case inputCase();

/// The same with so many turns of the engine that nothing waits for the next one.
Case fastInputCase();

}  // namespace zarvik::bench
