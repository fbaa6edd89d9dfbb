// Cookies, requests and JSON.

#include <algorithm>
#include <regex>

#include "World.h"

namespace app {

namespace {

using winrt::hstring;

http::HttpCookie cookie(const hstring& name, const hstring& domain, const hstring& path) {
    using M = Methods<http::IHttpCookie>;
    return make<http::IHttpCookie>(L"Windows.Web.Http.HttpCookie")
        .constant<&M::get_Name>(name)
        .constant<&M::get_Domain>(domain)
        .constant<&M::get_Path>(path)
        .property<&M::get_Value, &M::put_Value>(hstring())
        .property<&M::get_Expires, &M::put_Expires>(foundation::IReference<foundation::DateTime>())
        .property<&M::get_HttpOnly, &M::put_HttpOnly>(false)
        .property<&M::get_Secure, &M::put_Secure>(false);
}

/// Keeps the cookies of all filters.
http::HttpCookieManager cookieManager() {
    using I = http::IHttpCookieManager;
    static auto& cookies = *new std::vector<http::HttpCookie>;
    const auto remove = [](const http::HttpCookie& cookie) {
        std::erase_if(cookies, [&](const auto& other) { return other.Name() == cookie.Name(); });
    };
    return make<I>(L"Windows.Web.Http.HttpCookieManager")
        .on<&Methods<I>::SetCookie>([remove](const http::HttpCookie& cookie) {
            remove(cookie);
            cookies.push_back(cookie);
            return false;
        })
        .on<&Methods<I>::DeleteCookie>(remove)
        .on<&Methods<I>::GetCookies>([](const foundation::Uri& uri) {
            std::vector<http::HttpCookie> matching;
            std::ranges::copy_if(cookies, std::back_inserter(matching), [&](const auto& cookie) {
                return textOf(uri).find(cookie.Domain()) != std::wstring::npos;
            });
            return winrt::single_threaded_vector(std::move(matching)).GetView();
        });
}

http::Filters::HttpBaseProtocolFilter filter() {
    using I = http::Filters::IHttpBaseProtocolFilter;
    return make<I>(L"Windows.Web.Http.Filters.HttpBaseProtocolFilter")
        .on<&Methods<I>::get_CookieManager>(cookieManager);
}

http::Headers::HttpRequestHeaderCollection headers() {
    using I = http::Headers::IHttpRequestHeaderCollection;
    return make<I>(L"Windows.Web.Http.Headers.HttpRequestHeaderCollection")
        .on<&Methods<I>::TryAppendWithoutValidation>([](const hstring& name, const hstring& value) {
            world()->note(std::wstring(L"header " + name + L"=" + value));
            return std::ranges::find(name, L' ') == name.end();
        });
}

http::HttpRequestMessage request(void*, const foundation::Uri& uri) {
    using I = http::IHttpRequestMessage;
    return make<I>(L"Windows.Web.Http.HttpRequestMessage")
        .constant<&Methods<I>::get_RequestUri>(uri)
        .on<&Methods<I>::get_Headers>(headers);
}

http::HttpMethod get() {
    return make<http::IHttpMethod>(L"Windows.Web.Http.HttpMethod");
}

/// Any JSON value that is neither an object nor an array, by its text.
json::JsonValue jsonValue(const std::wstring& text) {
    using enum json::JsonValueType;
    using I = json::IJsonValue;
    const auto type = text == L"null"                       ? Null
                      : text == L"true" || text == L"false" ? Boolean
                      : text.front() == L'"'                ? String
                                                            : Number;
    const auto require = [type](json::JsonValueType wanted) {
        if (type != wanted) {
            throw winrt::hresult_illegal_method_call();
        }
    };
    return make<I>(L"Windows.Data.Json.JsonValue")
        .constant<&Methods<I>::get_ValueType>(type)
        .constant<&Methods<I>::Stringify>(hstring(text))
        .on<&Methods<I>::GetString>([=] {
            require(String);
            return hstring(text.substr(1, text.size() - 2));
        })
        .on<&Methods<I>::GetNumber>([=] {
            require(Number);
            return std::stod(text);
        })
        .on<&Methods<I>::GetBoolean>([=] {
            require(Boolean);
            return text == L"true";
        });
}

json::JsonObject jsonObject(std::map<std::wstring, std::wstring> known = {}) {
    using I = json::IJsonObject;
    using Map = foundation::Collections::IMap<hstring, json::IJsonValue>;
    using Value = json::IJsonValue;
    const auto members = std::make_shared<std::wstring>();
    return make<I>(L"Windows.Data.Json.JsonObject")
        .on<&Methods<I>::GetNamedValue>(
            [known](const hstring& name) { return jsonValue(known.at(std::wstring(name))); })
        .as<Map>()
        .on<&Methods<Map>::HasKey>(
            [known](const hstring& name) { return known.contains(std::wstring(name)); })
        .on<&Methods<Map>::Insert>([members](const hstring& name, const Value& value) {
            *members += (members->empty() ? L"\"" : L",\"") + name + L"\":" + value.Stringify();
            return false;
        })
        .as<Value>()
        .on<&Methods<Value>::Stringify>([members] { return hstring(L"{" + *members + L"}"); });
}

json::JsonArray jsonArray() {
    using Vector = foundation::Collections::IVector<json::IJsonValue>;
    using Value = json::IJsonValue;
    const auto items = std::make_shared<std::wstring>();
    return make<json::IJsonArray>(L"Windows.Data.Json.JsonArray")
        .as<Vector>()
        .on<&Methods<Vector>::Append>(
            [items](const Value& value) { *items += (items->empty() ? L"" : L",") + value.Stringify(); })
        .as<Value>()
        .on<&Methods<Value>::Stringify>([items] { return hstring(L"[" + *items + L"]"); });
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

winrt::com_ptr<Object> jsonValues() {
    using I = json::IJsonValueStatics;
    using Nulls = json::IJsonValueStatics2;
    return make<I>(L"factory")
        .on<&Methods<I>::CreateStringValue>(
            [](const hstring& text) { return jsonValue(L"\"" + std::wstring(text) + L"\""); })
        .on<&Methods<I>::CreateNumberValue>(
            [](double number) { return jsonValue(std::to_wstring(static_cast<std::int64_t>(number))); })
        .on<&Methods<I>::CreateBooleanValue>([](bool flag) { return jsonValue(flag ? L"true" : L"false"); })
        .as<Nulls>()
        .on<&Methods<Nulls>::CreateNullValue>([] { return jsonValue(L"null"); });
}

auto time(std::int64_t ticks) {
    return winrt::make<winrt::impl::reference<foundation::DateTime>>(
        foundation::DateTime(foundation::TimeSpan(ticks)));
}

}  // namespace

Factories web() {
    using Parsers = json::IJsonObjectStatics;
    using Activation = foundation::IActivationFactory;
    using Values = foundation::IPropertyValueStatics;
    using Cookies = http::IHttpCookieFactory;
    using Verbs = http::IHttpMethodStatics;
    using Requests = http::IHttpRequestMessageFactory;
    return {
        {L"Windows.Data.Json.JsonArray", activating(jsonArray)},
        {L"Windows.Data.Json.JsonObject",
         [] {
             return make<Activation>(L"factory")
                 .on<&Methods<Activation>::ActivateInstance>(
                     []() -> foundation::IInspectable { return jsonObject(); })
                 .as<Parsers>()
                 .on<&Methods<Parsers>::Parse>(parse);
         }},
        {L"Windows.Data.Json.JsonValue", jsonValues},
        {L"Windows.Foundation.PropertyValue", answering<Values, &Methods<Values>::CreateDateTime>(time)},
        {L"Windows.Web.Http.Filters.HttpBaseProtocolFilter", activating(filter)},
        {L"Windows.Web.Http.HttpCookie", answering<Cookies, &Methods<Cookies>::Create>(cookie)},
        {L"Windows.Web.Http.HttpMethod", answering<Verbs, &Methods<Verbs>::get_Get>(get)},
        {L"Windows.Web.Http.HttpRequestMessage", answering<Requests, &Methods<Requests>::Create>(request)},
    };
}

}  // namespace app
