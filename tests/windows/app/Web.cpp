// Cookies, requests and JSON.

#include <algorithm>
#include <regex>

#include "World.h"

namespace app {

namespace {

using winrt::hstring;

http::HttpCookie cookie(const hstring& name, const hstring& domain, const hstring& path) {
    return make(L"Windows.Web.Http.HttpCookie")
        .constant<METHOD(http::IHttpCookie, get_Name)>(name)
        .constant<METHOD(http::IHttpCookie, get_Domain)>(domain)
        .constant<METHOD(http::IHttpCookie, get_Path)>(path)
        .property<METHOD(http::IHttpCookie, get_Value), METHOD(http::IHttpCookie, put_Value)>(hstring())
        .property<METHOD(http::IHttpCookie, get_Expires), METHOD(http::IHttpCookie, put_Expires)>(
            foundation::IReference<foundation::DateTime>())
        .property<METHOD(http::IHttpCookie, get_HttpOnly), METHOD(http::IHttpCookie, put_HttpOnly)>(false)
        .property<METHOD(http::IHttpCookie, get_Secure), METHOD(http::IHttpCookie, put_Secure)>(false);
}

/// Keeps the cookies of all filters.
http::HttpCookieManager cookieManager() {
    static auto& cookies = *new std::vector<http::HttpCookie>;
    const auto remove = [](const http::HttpCookie& cookie) {
        std::erase_if(cookies, [&](const auto& other) { return other.Name() == cookie.Name(); });
    };
    return make(L"Windows.Web.Http.HttpCookieManager")
        .on<METHOD(http::IHttpCookieManager, SetCookie)>([remove](const http::HttpCookie& cookie) {
            remove(cookie);
            cookies.push_back(cookie);
            return false;
        })
        .on<METHOD(http::IHttpCookieManager, DeleteCookie)>(remove)
        .on<METHOD(http::IHttpCookieManager, GetCookies)>([](const foundation::Uri& uri) {
            std::vector<http::HttpCookie> matching;
            std::ranges::copy_if(cookies, std::back_inserter(matching), [&](const auto& cookie) {
                return textOf(uri).find(cookie.Domain()) != std::wstring::npos;
            });
            return winrt::single_threaded_vector(std::move(matching)).GetView();
        });
}

http::Filters::HttpBaseProtocolFilter filter() {
    return make(L"Windows.Web.Http.Filters.HttpBaseProtocolFilter")
        .on<METHOD(http::Filters::IHttpBaseProtocolFilter, get_CookieManager)>(cookieManager);
}

http::Headers::HttpRequestHeaderCollection headers() {
    return make(L"Windows.Web.Http.Headers.HttpRequestHeaderCollection")
        .on<METHOD(http::Headers::IHttpRequestHeaderCollection, TryAppendWithoutValidation)>(
            [](const hstring& name) { return std::ranges::find(name, L' ') == name.end(); });
}

http::HttpRequestMessage request(void*, const foundation::Uri& uri) {
    return make(L"Windows.Web.Http.HttpRequestMessage")
        .constant<METHOD(http::IHttpRequestMessage, get_RequestUri)>(uri)
        .on<METHOD(http::IHttpRequestMessage, get_Headers)>(headers);
}

http::HttpMethod get() {
    return make(L"Windows.Web.Http.HttpMethod").also<http::IHttpMethod>();
}

/// Any JSON value that is neither an object nor an array, by its text.
json::JsonValue jsonValue(const std::wstring& text) {
    using enum json::JsonValueType;
    const auto type = text == L"null"                       ? Null
                      : text == L"true" || text == L"false" ? Boolean
                      : text.front() == L'"'                ? String
                                                            : Number;
    const auto require = [type](json::JsonValueType wanted) {
        if (type != wanted) {
            throw winrt::hresult_illegal_method_call();
        }
    };
    return make(L"Windows.Data.Json.JsonValue")
        .constant<METHOD(json::IJsonValue, get_ValueType)>(type)
        .constant<METHOD(json::IJsonValue, Stringify)>(hstring(text))
        .on<METHOD(json::IJsonValue, GetString)>([=] {
            require(String);
            return hstring(text.substr(1, text.size() - 2));
        })
        .on<METHOD(json::IJsonValue, GetNumber)>([=] {
            require(Number);
            return std::stod(text);
        })
        .on<METHOD(json::IJsonValue, GetBoolean)>([=] {
            require(Boolean);
            return text == L"true";
        });
}

json::JsonObject jsonObject(std::map<std::wstring, std::wstring> known = {}) {
    using Map = foundation::Collections::IMap<hstring, json::IJsonValue>;
    const auto members = std::make_shared<std::wstring>();
    return make(L"Windows.Data.Json.JsonObject")
        .on<METHOD(json::IJsonObject, GetNamedValue)>(
            [known](const hstring& name) { return jsonValue(known.at(std::wstring(name))); })
        .on<METHOD(Map, HasKey)>([known](const hstring& name) { return known.contains(std::wstring(name)); })
        .on<METHOD(Map, Insert)>([members](const hstring& name, const json::IJsonValue& value) {
            *members += (members->empty() ? L"\"" : L",\"") + name + L"\":" + value.Stringify();
            return false;
        })
        .on<METHOD(json::IJsonValue, Stringify)>([members] { return hstring(L"{" + *members + L"}"); });
}

json::JsonArray jsonArray() {
    using Vector = foundation::Collections::IVector<json::IJsonValue>;
    const auto items = std::make_shared<std::wstring>();
    return make(L"Windows.Data.Json.JsonArray")
        .also<json::IJsonArray>()
        .on<METHOD(Vector, Append)>([items](const json::IJsonValue& value) {
            *items += (items->empty() ? L"" : L",") + value.Stringify();
        })
        .on<METHOD(json::IJsonValue, Stringify)>([items] { return hstring(L"[" + *items + L"]"); });
}

/// Flat objects only, without blanks or escapes.
json::JsonObject parse(const hstring& text) {
    static const std::wregex member(LR"re([{,]"(\w+)":("[^"]*"|true|false|null|\d+))re");
    std::map<std::wstring, std::wstring> members;
    std::wstring rest(text);
    for (std::wsmatch found; std::regex_search(rest, found, member, std::regex_constants::match_continuous);
         rest = found.suffix()) {
        members[found[1]] = found[2];
    }
    if (rest != L"}") {
        throw winrt::hresult_error(static_cast<HRESULT>(0x83750007));
    }
    return jsonObject(members);
}

Making jsonValues() {
    return make(L"factory")
        .on<METHOD(json::IJsonValueStatics, CreateStringValue)>(
            [](const hstring& text) { return jsonValue(L"\"" + std::wstring(text) + L"\""); })
        .on<METHOD(json::IJsonValueStatics, CreateNumberValue)>(
            [](double number) { return jsonValue(std::to_wstring(static_cast<std::int64_t>(number))); })
        .on<METHOD(json::IJsonValueStatics, CreateBooleanValue)>(
            [](bool flag) { return jsonValue(flag ? L"true" : L"false"); })
        .on<METHOD(json::IJsonValueStatics2, CreateNullValue)>([] { return jsonValue(L"null"); });
}

auto time(std::int64_t ticks) {
    return winrt::make<winrt::impl::reference<foundation::DateTime>>(
        foundation::DateTime(foundation::TimeSpan(ticks)));
}

}  // namespace

Factories web() {
    return {
        {L"Windows.Data.Json.JsonArray", activating(jsonArray)},
        {L"Windows.Data.Json.JsonObject",
         activating([] { return jsonObject(); }).on<METHOD(json::IJsonObjectStatics, Parse)>(parse)},
        {L"Windows.Data.Json.JsonValue", jsonValues()},
        {L"Windows.Foundation.PropertyValue",
         answering<METHOD(foundation::IPropertyValueStatics, CreateDateTime)>(time)},
        {L"Windows.Web.Http.Filters.HttpBaseProtocolFilter", activating(filter)},
        {L"Windows.Web.Http.HttpCookie", answering<METHOD(http::IHttpCookieFactory, Create)>(cookie)},
        {L"Windows.Web.Http.HttpMethod", answering<METHOD(http::IHttpMethodStatics, get_Get)>(get)},
        {L"Windows.Web.Http.HttpRequestMessage",
         answering<METHOD(http::IHttpRequestMessageFactory, Create)>(request)},
    };
}

}  // namespace app
