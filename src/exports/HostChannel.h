#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "exports/ZarvikOrvella.h"

/// The way from the library to the engine: host messages, data results and log lines, through the function
/// pointers that the engine registers. Everything here may be called on any thread and calls the engine's
/// function on that same thread, without a lock. All texts are UTF-8.

void setSendMessageFunction(ZarvikSendMessageFunction function);
void setDataResultCallback(ZarvikDataResultCallback callback);
void setLogFunctions(ZarvikLogFunction info, ZarvikLogFunction warning, ZarvikLogFunction error);

/// Sends one host message. Without a registered function the message is dropped with one error line, and
/// the result is false.
bool sendHostMessage(const std::string& messageTargetName, const std::string& methodName,
                     const std::string& payload);

/// Delivers the bytes that answer the request with this id.
void sendDataResult(const std::string& messageTargetName, const std::string& resultCallbackId,
                    std::span<const std::uint8_t> bytes);

/// Write one log line; a severity without a registered function is dropped.
void logInfo(std::string_view text);
void logWarning(std::string_view text);
void logError(std::string_view text);

/// The line for a text that was logged when the monotonic clock stood at this time.
std::string composeLogLine(std::int64_t milliseconds, std::string_view text);
