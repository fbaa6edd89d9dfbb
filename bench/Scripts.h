#pragma once

#include "Case.h"

namespace zarvik::bench {

/// How many script results come per second, one by one and with many under way.
Case scriptsCase();

/// How many messages of the page arrive per second when it sends a lot of them at once.
Case messagesCase();

}  // namespace zarvik::bench
