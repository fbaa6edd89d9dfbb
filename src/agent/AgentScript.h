#pragma once

#include <string_view>

/// The program that runs inside every page: one line of ES5 without backslashes. Running it defines
/// `window.__initZarvik(options)`, which starts it. The build makes it from the TypeScript modules in this
/// folder.
extern const std::string_view agentScript;
