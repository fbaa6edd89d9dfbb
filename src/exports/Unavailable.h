#pragma once

#include <string>

#include "exports/HostChannel.h"

/// Reports the call of a function that this version of the library cannot carry out.
inline void reportUnavailable(const char* exportName) {
    logError(std::string(exportName) + " isn't available in this version of Zarvik Orvella.");
}
