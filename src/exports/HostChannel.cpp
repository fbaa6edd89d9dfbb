#include "exports/HostChannel.h"

#include <atomic>
#include <chrono>
#include <limits>

#include "exports/LogTexts.h"

namespace {

std::atomic<ZarvikSendMessageFunction> sendMessageFunction{nullptr};
std::atomic<ZarvikDataResultCallback> dataResultCallback{nullptr};
std::atomic<ZarvikLogFunction> infoLogFunction{nullptr};
std::atomic<ZarvikLogFunction> warningLogFunction{nullptr};
std::atomic<ZarvikLogFunction> errorLogFunction{nullptr};

void writeLogLine(ZarvikLogFunction function, std::string_view text) {
    if (!function) {
        return;
    }
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    function(composeLogLine(milliseconds, text).c_str());
}

}  // namespace

void setSendMessageFunction(ZarvikSendMessageFunction function) {
    sendMessageFunction = function;
}

void setDataResultCallback(ZarvikDataResultCallback callback) {
    dataResultCallback = callback;
}

void setLogFunctions(ZarvikLogFunction info, ZarvikLogFunction warning, ZarvikLogFunction error) {
    infoLogFunction = info;
    warningLogFunction = warning;
    errorLogFunction = error;
}

bool sendHostMessage(const std::string& messageTargetName, const std::string& methodName,
                     const std::string& payload) {
    const ZarvikSendMessageFunction send = sendMessageFunction;
    if (!send) {
        logError(log_texts::noSendMessageFunction);
        return false;
    }
    send(messageTargetName.c_str(), methodName.c_str(), payload.c_str());
    return true;
}

void sendDataResult(const std::string& messageTargetName, const std::string& resultCallbackId,
                    std::span<const std::uint8_t> bytes) {
    const ZarvikDataResultCallback callback = dataResultCallback;
    if (!callback) {
        logError(log_texts::noDataResultCallback);
        return;
    }
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        logError(log_texts::dataResultTooLarge);
        return;
    }
    callback(messageTargetName.c_str(), resultCallbackId.c_str(), bytes.data(),
             static_cast<std::int32_t>(bytes.size()));
}

void logInfo(std::string_view text) {
    writeLogLine(infoLogFunction, text);
}

void logWarning(std::string_view text) {
    writeLogLine(warningLogFunction, text);
}

void logError(std::string_view text) {
    writeLogLine(errorLogFunction, text);
}

std::string composeLogLine(std::int64_t milliseconds, std::string_view text) {
    return std::to_string(milliseconds).append(" ").append(text);
}
