#include "exports/HostChannel.h"

#include <chrono>
#include <limits>

#include "exports/EngineFunction.h"
#include "exports/LogTexts.h"

namespace {

EngineFunction<const char*, const char*, const char*> sendMessageFunction;
EngineFunction<const char*, const char*, const std::uint8_t*, std::int32_t> dataResultCallback;
EngineFunction<const char*> infoLogFunction;
EngineFunction<const char*> warningLogFunction;
EngineFunction<const char*> errorLogFunction;

void writeLogLine(EngineFunction<const char*>& function, std::string_view text) {
    if (!function.isSet()) {
        return;
    }
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    const auto milliseconds = std::chrono::duration_cast<std::chrono::milliseconds>(now).count();
    function.call(composeLogLine(milliseconds, text).c_str());
}

}  // namespace

void setSendMessageFunction(ZarvikSendMessageFunction function) {
    sendMessageFunction.set(function);
}

void setDataResultCallback(ZarvikDataResultCallback callback) {
    dataResultCallback.set(callback);
}

void setLogFunctions(ZarvikLogFunction info, ZarvikLogFunction warning, ZarvikLogFunction error) {
    infoLogFunction.set(info);
    warningLogFunction.set(warning);
    errorLogFunction.set(error);
}

bool sendHostMessage(const std::string& messageTargetName, const std::string& methodName,
                     const std::string& payload) {
    const bool sent =
        sendMessageFunction.call(messageTargetName.c_str(), methodName.c_str(), payload.c_str());
    if (!sent) {
        logError(log_texts::noSendMessageFunction);
    }
    return sent;
}

void sendDataResult(const std::string& messageTargetName, const std::string& resultCallbackId,
                    std::span<const std::uint8_t> bytes) {
    if (bytes.size() > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        logError(dataResultCallback.isSet() ? log_texts::dataResultTooLarge
                                            : log_texts::noDataResultCallback);
    } else if (!dataResultCallback.call(messageTargetName.c_str(), resultCallbackId.c_str(), bytes.data(),
                                        static_cast<std::int32_t>(bytes.size()))) {
        logError(log_texts::noDataResultCallback);
    }
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
