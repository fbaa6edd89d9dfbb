#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "zarvik/host/Plugin.h"

class Session;

/// An argument of a call: what it is now, or what it will be found to be when the call is made.
struct Argument {
    enum class Kind { number, text, null, callbackId, targetName, view, texture, address, own };

    Kind kind = Kind::number;
    std::int64_t number = 0;  // of views, textures and callback ids: which one
    std::string text{};       // with $SERVER and $FOLDER for what only the session knows
    std::string shown{};      // as it would stand in C
    void* pointer = nullptr;  // of a view, once the session knows it
};

/// An exported function, called by the types of its parameters.
struct Export {
    std::string name;
    std::vector<std::string> parameters;  // their names
    void (*call)(Session& session, const struct Step& step);
};

/// All exports, in the order of their table.
const std::vector<Export>& exportTable();

/// One step of a sequence: a call of the engine's, or something that the engine does meanwhile.
struct Step {
    enum class Action { call, turn, render, wait, waitForLoad, failDevice, mendDevice, killPage };
    enum class Where { here, inCallback, onOtherThread };

    Action action = Action::call;
    Where where = Where::here;
    const Export* function = nullptr;
    int view = -1;                      // which one it makes
    std::vector<Argument> arguments{};  // also of what is no call

    std::string text() const;
};

/// Every input is a sequence.
std::vector<Step> decode(std::span<const std::uint8_t> input);

inline constexpr int mostViews = 8;
