#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "zarvik/host/Engine.h"
#include "zarvik/host/View.h"

/// A page in an engine that sends messages when it is told to.
class MessagePage {
  public:
    /// The one of this process, from time to time a new one, since an engine keeps what it has heard.
    static MessagePage& shared();

    /// Runs a script and gives the messages that the engine has got from the page when its result comes.
    std::vector<std::string> messagesOf(const std::string& script);
    std::string resultOf(const std::string& script);
    /// A text, given as an expression, as UTF-8 by the browser engine's own rules: what is no character is
    /// U+FFFD.
    std::string utf8Of(const std::string& text);

  private:
    MessagePage();

    zarvik::host::Engine engine{{}};
    zarvik::host::View view{engine, {32, 32}};
    int uses = 0;
};

/// The bytes as UTF-16, each two of them a unit. Not always well-formed.
std::u16string toUnits(std::span<const std::uint8_t> bytes);

/// The text as an expression of JavaScript.
std::string toScript(std::u16string_view text);
