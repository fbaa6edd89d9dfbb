#pragma once

#include <optional>
#include <string>

/// Texts for the exception that is being handled; to be called inside a catch block.

/// The exception's message, or nothing for an exception that carries none.
std::optional<std::string> currentExceptionMessage();

/// What a log line says about the exception: the platform's failure code as a signed decimal, if it has one,
/// and its message.
std::string currentExceptionText();
