#pragma once

#include "Case.h"

namespace zarvik::bench {

/// How many script results come per second with many under way.
Case pipelinedScriptsCase();

/// How many come one by one. Each result wakes eight threads of both processes, one after the other.
Case awaitedScriptsCase();

/// The same where waking a thread costs little: to wake another processor takes 50 to 130 us on a virtual
/// machine, which is most of an awaited result and says nothing of the programs.
Case awaitedScriptsOnOneProcessorCase();

/// How many messages of the page arrive per second when it sends a lot of them at once.
Case messagesCase();

}  // namespace zarvik::bench
