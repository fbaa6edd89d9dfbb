#include "exports/UserAgent.h"

#include <array>
#include <atomic>
#include <memory>

#include "exports/HostChannel.h"
#include "exports/LogTexts.h"
#include "platform.h"

#include <urlmon.h>

namespace {

/// The session option of the platform that holds the user agent.
constexpr DWORD userAgentOption = 0x10000001;

constexpr const char* mobileUserAgent =
    "Mozilla/5.0 (Windows Phone 10.0; Android 6.0.1; Microsoft; RM-1152) AppleWebKit/537.36 (KHTML, like "
    "Gecko) Chrome/52.0.2743.116 Mobile Safari/537.36";

struct DefaultUserAgent {
    std::string text;
    HRESULT result;
};

DefaultUserAgent readDefaultUserAgent() {
    constexpr DWORD bufferSize = 300;
    std::array<char, bufferSize + 1> buffer{};
    DWORD length = 0;
    const HRESULT result = UrlMkGetSessionOption(userAgentOption, buffer.data(), bufferSize, &length, 0);
    // The text counts and not the result: an implementation is known that fills the buffer and still reports
    // that it is too small.
    return {buffer.data(), result};
}

/// The platform's own user agent, read once before the first change.
const DefaultUserAgent& defaultUserAgent() {
    // Without a lock: the platform may need the UI thread for it, which may be asking at the same moment.
    static std::atomic<const DefaultUserAgent*> saved = nullptr;
    if (const auto* const known = saved.load()) {
        return *known;
    }
    auto read = std::make_unique<const DefaultUserAgent>(readDefaultUserAgent());
    const DefaultUserAgent* first = nullptr;
    return saved.compare_exchange_strong(first, read.get()) ? *read.release() : *first;
}

void apply(std::string userAgent) {
    const HRESULT result =
        UrlMkSetSessionOption(userAgentOption, userAgent.data(), static_cast<DWORD>(userAgent.size()), 0);
    if (FAILED(result)) {
        logError(log_texts::userAgentSetFailed + std::to_string(static_cast<std::uint32_t>(result)));
    }
}

}  // namespace

void user_agent::set(const std::string& userAgent) {
    defaultUserAgent();
    apply(userAgent);
}

void user_agent::setToMobile(bool mobile) {
    const DefaultUserAgent& saved = defaultUserAgent();
    if (mobile) {
        apply(mobileUserAgent);
    } else if (saved.text.empty()) {
        logError(log_texts::noDefaultUserAgent + std::to_string(static_cast<std::uint32_t>(saved.result)));
    } else {
        apply(saved.text);
    }
}
