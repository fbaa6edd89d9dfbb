#include "exports/Cookies.h"

#include <algorithm>
#include <ctime>
#include <string_view>
#include <vector>

#include "exports/Exceptions.h"
#include "exports/HostChannel.h"
#include "exports/LogTexts.h"
#include "platform.h"

namespace {

/// The end of the year 9999, beyond which the platform's clock is of no use.
constexpr double latestExpirationDate = 253402300799.0;

http::HttpCookieManager cookieManager() {
    return http::Filters::HttpBaseProtocolFilter().CookieManager();
}

std::vector<http::HttpCookie> fetchCookies(const std::string& url, const std::string& cookieName) {
    std::vector<http::HttpCookie> found;
    for (const auto& cookie : cookieManager().GetCookies(foundation::Uri(winrt::to_hstring(url)))) {
        if (cookieName.empty() || winrt::to_string(cookie.Name()) == cookieName) {
            found.push_back(cookie);
        }
    }
    return found;
}

json::JsonValue text(const winrt::hstring& value) {
    return json::JsonValue::CreateStringValue(value);
}

json::JsonObject toJson(const http::HttpCookie& cookie) {
    json::JsonValue expirationDate = json::JsonValue::CreateNullValue();
    if (const auto expires = cookie.Expires()) {
        const auto seconds = winrt::clock::to_time_t(expires.Value());
        expirationDate = json::JsonValue::CreateNumberValue(static_cast<double>(seconds));
    }
    json::JsonObject object;
    object.Insert(L"Name", text(cookie.Name()));
    object.Insert(L"Value", text(cookie.Value()));
    object.Insert(L"Domain", text(cookie.Domain()));
    object.Insert(L"Path", text(cookie.Path()));
    object.Insert(L"ExpirationDate", expirationDate);
    object.Insert(L"HttpOnly", json::JsonValue::CreateBooleanValue(cookie.HttpOnly()));
    object.Insert(L"Secure", json::JsonValue::CreateBooleanValue(cookie.Secure()));
    return object;
}

/// The value of a key, or null if the key is missing or holds a JSON null.
json::JsonValue lookUp(const json::JsonObject& object, const wchar_t* key) {
    if (!object.HasKey(key)) {
        return nullptr;
    }
    const json::JsonValue value = object.GetNamedValue(key);
    return value.ValueType() == json::JsonValueType::Null ? json::JsonValue{nullptr} : value;
}

/// The text of a key; an empty one counts as missing.
winrt::hstring readText(const json::JsonObject& object, const wchar_t* key, const wchar_t* missing = L"") {
    const json::JsonValue value = lookUp(object, key);
    const winrt::hstring found = value ? value.GetString() : winrt::hstring();
    return found.empty() ? winrt::hstring(missing) : found;
}

bool readBoolean(const json::JsonObject& object, const wchar_t* key) {
    const json::JsonValue value = lookUp(object, key);
    return value && value.GetBoolean();
}

double readNumber(const json::JsonObject& object, const wchar_t* key) {
    const json::JsonValue value = lookUp(object, key);
    return value ? value.GetNumber() : 0.0;
}

void require(bool condition, const wchar_t* message) {
    if (!condition) {
        throw winrt::hresult_error(E_INVALIDARG, message);
    }
}

/// True if the text holds neither a control character nor one of the forbidden characters.
bool isClean(std::wstring_view text, std::wstring_view forbidden) {
    return std::ranges::none_of(text, [forbidden](wchar_t character) {
        return character < 0x20 || character == 0x7F || forbidden.find(character) != std::wstring_view::npos;
    });
}

http::HttpCookie fromJson(const std::string& cookieJson) {
    const json::JsonObject object = json::JsonObject::Parse(winrt::to_hstring(cookieJson));
    const winrt::hstring name = readText(object, L"Name");
    const winrt::hstring value = readText(object, L"Value");
    const winrt::hstring domain = readText(object, L"Domain");
    const winrt::hstring path = readText(object, L"Path", L"/");
    const double expirationDate = readNumber(object, L"ExpirationDate");

    require(!name.empty() && isClean(name, L" ;=,"), L"The cookie's name is missing or invalid.");
    require(isClean(value, L";"), L"The cookie's value is invalid.");
    require(!domain.empty() && isClean(domain, L" ;,/:"), L"The cookie's domain is missing or invalid.");
    require(isClean(path, L";") && std::wstring_view(path).starts_with(L'/'),
            L"The cookie's path is invalid.");
    require(expirationDate >= 0 && expirationDate <= latestExpirationDate,
            L"The cookie's expiration date is invalid.");

    http::HttpCookie cookie(name, domain, path);
    cookie.Value(value);
    cookie.HttpOnly(readBoolean(object, L"HttpOnly"));
    cookie.Secure(readBoolean(object, L"Secure"));
    if (expirationDate != 0) {
        cookie.Expires(winrt::clock::from_time_t(static_cast<std::time_t>(expirationDate)));
    }
    return cookie;
}

}  // namespace

std::string cookies::get(const std::string& url, const std::string& cookieName) {
    try {
        json::JsonArray items;
        for (const http::HttpCookie& cookie : fetchCookies(url, cookieName)) {
            items.Append(toJson(cookie));
        }
        json::JsonObject answer;
        answer.Insert(L"Items", items);
        return winrt::to_string(answer.Stringify());
    } catch (...) {
        const auto message = currentExceptionMessage();
        logError(message ? log_texts::cookieFetchFailed + url + log_texts::errorMessage + *message
                         : log_texts::cookieFetchFailedUnknown + url);
    }
    return R"({"Items": []})";
}

bool cookies::set(const std::string& cookieJson) {
    try {
        cookieManager().SetCookie(fromJson(cookieJson));
        return true;
    } catch (...) {
        const auto message = currentExceptionMessage();
        logError(message ? log_texts::cookieSetFailed + *message : log_texts::cookieSetFailedUnknown);
    }
    return false;
}

void cookies::remove(const std::string& url, const std::string& cookieName) {
    try {
        const auto manager = cookieManager();
        for (const http::HttpCookie& cookie : fetchCookies(url, cookieName)) {
            manager.DeleteCookie(cookie);
        }
    } catch (...) {
        const auto message = currentExceptionMessage();
        logError(message ? log_texts::cookieDeleteFailed + url + log_texts::errorMessage + *message
                         : log_texts::cookieDeleteFailedUnknown + url);
    }
}
