// Cookies as JSON, into the browser engine's store and out again: what is said to be set is there as it was
// given, and what is refused is logged.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <nlohmann/json.hpp>

#include "exports/Cookies.h"
#include "exports/HostChannel.h"
#include "fuzz/support/Require.h"
#include "platform.h"

namespace {

using Json = nlohmann::json;

std::atomic<int> errors = 0;

/// The cookies of a URL, in the form that the engine is promised.
Json cookiesOf(const std::string& url, const std::string& name) {
    const Json answer = Json::parse(cookies::get(url, name), nullptr, false);
    require(answer.is_object() && answer.contains("Items") && answer["Items"].is_array(),
            "the answer has an array of cookies", answer.dump());
    for (const Json& item : answer["Items"]) {
        require(name.empty() || item["Name"] == name, "only cookies of the name are given", item.dump());
    }
    return answer["Items"];
}

/// What a key of the input means; missing keys, nulls and empty texts mean the same.
template <typename T>
T meaningOf(const Json& cookie, const char* key, T missing) {
    const auto found = cookie.find(key);
    if (found == cookie.end() || found->is_null()) {
        return missing;
    }
    T value = found->get<T>();
    return value == T() ? missing : value;
}

bool isOver(double expirationDate) {
    using namespace std::chrono;
    constexpr double anHour = 3600;
    return expirationDate != 0 &&
           expirationDate < duration<double>(system_clock::now().time_since_epoch()).count() + anHour;
}

/// A cookie that was said to be set is there, until it is deleted.
void checkSet(const std::string& text) {
    const Json cookie = Json::parse(text, nullptr, false);
    require(cookie.is_object(), "only an object is a cookie", readable(text));
    const auto name = meaningOf<std::string>(cookie, "Name", "");
    const auto value = meaningOf<std::string>(cookie, "Value", "");
    const auto path = meaningOf<std::string>(cookie, "Path", "/");
    const auto expirationDate = meaningOf<double>(cookie, "ExpirationDate", 0);
    const bool secure = meaningOf(cookie, "Secure", false);
    auto host = meaningOf<std::string>(cookie, "Domain", "");
    host.erase(0, host.starts_with('.') ? 1 : 0);
    for (const auto& part : {name, value, path, host}) {
        for (const char character : part) {
            require(static_cast<unsigned char>(character) >= ' ' && character != 0x7F && character != ';',
                    "a cookie cannot end its header", readable(text));
        }
    }
    if (isOver(expirationDate)) {
        return;
    }
    const auto url = (secure ? "https://" : "http://") + host + "/";
    if (path != "/") {
        return;  // which URLs another path covers is the browser engine's to say
    }
    Json stored;
    for (const Json& item : cookiesOf(url, name)) {
        if (item["Path"] == path) {
            stored = item;
        }
    }
    require(!stored.is_null(), "a cookie that was set is there", readable(text));
    require(stored["Value"] == value, "a cookie keeps its value", stored.dump() + " of " + readable(text));
    require(stored["Secure"] == secure && stored["HttpOnly"] == meaningOf(cookie, "HttpOnly", false),
            "a cookie keeps its flags", stored.dump() + " of " + readable(text));
    require(expirationDate < 1 ? stored["ExpirationDate"].is_null() || expirationDate != 0
                               : stored["ExpirationDate"] == std::floor(expirationDate),
            "a cookie keeps its end", stored.dump() + " of " + readable(text));
    cookies::remove(url, "");
    require(cookiesOf(url, "").empty(), "deleted cookies are gone", readable(text));
}

/// What JSON says survives being read and written.
void checkJson(const std::string& text) {
    try {
        const auto first = json::JsonObject::Parse(winrt::to_hstring(text)).Stringify();
        require(json::JsonObject::Parse(first).Stringify() == first,
                "an object can be read as it was written", readable(text));
    } catch (const winrt::hresult_error& error) {
        require(!error.message().empty(), "a refusal says why", readable(text));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // As C texts come: without a zero in them.
    std::string raw(reinterpret_cast<const char*>(data), size);
    raw.resize(std::min(raw.find('\0'), size));
    const std::string text = winrt::to_string(winrt::to_hstring(raw));  // what is no UTF-8 is replaced
    setLogFunctions(nullptr, nullptr, [](const char*) { ++errors; });
    checkJson(text);
    errors = 0;
    if (cookies::set(raw)) {
        require(errors == 0, "a cookie that was set logs no error", readable(text));
        checkSet(text);
    } else {
        require(errors == 1, "a cookie that is refused logs one error", readable(text));
    }
    // The same text in the other places where one comes in.
    cookiesOf(raw, "");
    cookiesOf("http://example.com/", text);
    return 0;
}
