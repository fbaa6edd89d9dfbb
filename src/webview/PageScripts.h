#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// The scripts that native code runs in pages, apart from the agent itself.
namespace page_scripts {

/// Defines `_evalToString`, which turns whatever a script gives or throws into text.
extern const std::string_view evaluationHelper;

/// Asks for the agent, once a second, on behalf of frames of the page's own origin that are new.
extern const std::string_view frameWatcher;

/// Starts the agent in the frames that asked for it.
const std::string& frameAgentStarter();

/// Starts the agent in a page.
std::string agentStart(bool consoleMessageEvents, bool focusedInputFieldEvents, double devicePixelRatio);

/// Gives a page without any background a white one.
inline constexpr const char* setDefaultBackground = "_zarvikInternal.setDefaultBackground()";

inline constexpr const char* enableFocusedInputFieldEvents =
    "_zarvikInternal.browserAgent.setFocusedInputFieldEventsEnabled(true)";

// One line for each input from the engine. Coordinates and deltas are page pixels.
std::string setConsoleMessageEventsEnabled(bool enabled);
std::string click(std::int32_t x, std::int32_t y);
std::string pointerDown(std::int32_t x, std::int32_t y, std::int32_t mouseButton, std::int32_t clickCount);
std::string pointerUp(std::int32_t x, std::int32_t y, std::int32_t mouseButton, std::int32_t clickCount);
std::string movePointer(std::int32_t x, std::int32_t y, bool pointerLeave);
std::string scroll(std::int32_t deltaX, std::int32_t deltaY);
std::string scrollAtPoint(std::int32_t deltaX, std::int32_t deltaY, std::int32_t x, std::int32_t y);
/// Escapes keys of one character only; other names go in as they are.
std::string sendKey(std::string key);
std::string setFocused(bool focused);

}  // namespace page_scripts
