// Cookies, requests and JSON.

#include <algorithm>
#include <cwctype>

#include "World.h"

namespace app {

namespace {

using winrt::hstring;

struct Cookie : Object {
    Cookie(hstring name, hstring domain, hstring path)
        : Object(L"Windows.Web.Http.HttpCookie", Threads::any),
          name(std::move(name)),
          domain(std::move(domain)),
          path(std::move(path)) {
        add([] {
            using M = Methods<http::IHttpCookie>;
            return Answers<Cookie, http::IHttpCookie>()
                .on<&Cookie::name>(&M::get_Name)
                .on<&Cookie::value>(&M::get_Value)
                .on<&Cookie::domain>(&M::get_Domain)
                .on<&Cookie::path>(&M::get_Path)
                .on<&Cookie::expires>(&M::get_Expires)
                .on<&Cookie::httpOnly>(&M::get_HttpOnly)
                .on<&Cookie::secure>(&M::get_Secure)
                .on<&Cookie::value>(&M::put_Value)
                .on<&Cookie::expires>(&M::put_Expires)
                .on<&Cookie::httpOnly>(&M::put_HttpOnly)
                .on<&Cookie::secure>(&M::put_Secure);
        });
    }

    hstring name;
    hstring domain;
    hstring path;
    hstring value;
    foundation::IReference<foundation::DateTime> expires;
    bool httpOnly = false;
    bool secure = false;
};

/// A time as an object.
struct Time : Object {
    explicit Time(std::int64_t ticks)
        : Object(L"Windows.Foundation.IReference`1", Threads::any), ticks(ticks) {
        using I = foundation::IReference<foundation::DateTime>;
        add([] { return Answers<Time, I>().on<&Time::ticks>(&Methods<I>::get_Value); });
    }

    std::int64_t ticks;
};

/// The filter and its cookie manager, whose cookies all filters share.
struct Filter : Object {
    Filter() : Object(L"Windows.Web.Http.Filters.HttpBaseProtocolFilter", Threads::any) {
        using I = http::Filters::IHttpBaseProtocolFilter;
        using Manager = http::IHttpCookieManager;
        add([] {
            return Answers<Filter, I>()
                .on<[](Filter& self) { return project<http::HttpCookieManager>(self); }>(
                    &Methods<I>::get_CookieManager);
        });
        add([] {
            return Answers<Filter, Manager>()
                .on<[](Filter&, const http::HttpCookie& cookie) {
                    remove(cookie);
                    cookies.push_back(cookie);
                    return false;
                }>(&Methods<Manager>::SetCookie)
                .on<[](Filter&, const http::HttpCookie& cookie) { remove(cookie); }>(
                    &Methods<Manager>::DeleteCookie)
                .on<[](Filter&, const foundation::Uri& uri) {
                    auto matching = winrt::single_threaded_vector<http::HttpCookie>();
                    for (const auto& cookie : cookies) {
                        if (textOf(uri).find(behind<Cookie>(cookie).domain) != std::wstring::npos) {
                            matching.Append(cookie);
                        }
                    }
                    return matching.GetView();
                }>(&Methods<Manager>::GetCookies);
        });
    }

    static void remove(const http::HttpCookie& cookie) {
        std::erase_if(cookies, [&](const auto& other) {
            return behind<Cookie>(other).name == behind<Cookie>(cookie).name;
        });
    }

    static inline auto& cookies = *new std::vector<http::HttpCookie>;
};

/// A request with its headers.
struct Request : Object {
    explicit Request(foundation::Uri uri)
        : Object(L"Windows.Web.Http.HttpRequestMessage", Threads::any), uri(std::move(uri)) {
        using I = http::IHttpRequestMessage;
        using Headers = http::Headers::IHttpRequestHeaderCollection;
        add([] {
            return Answers<Request, I>().on<&Request::uri>(&Methods<I>::get_RequestUri).on<[](Request& self) {
                return project<http::Headers::HttpRequestHeaderCollection>(self);
            }>(&Methods<I>::get_Headers);
        });
        add([] {
            return Answers<Request, Headers>().on<[](Request&, const hstring& name, const hstring& value) {
                world().note(std::wstring(L"header " + name + L"=" + value));
                return std::ranges::find(name, L' ') == name.end();
            }>(&Methods<Headers>::TryAppendWithoutValidation);
        });
    }

    foundation::Uri uri;
};

http::HttpMethod getMethod() {
    auto* const method = new Object(L"Windows.Web.Http.HttpMethod", Object::Threads::any);
    method->addBare<http::IHttpMethod>();
    return adopt<http::HttpMethod>(method);
}

using json::JsonValueType;

/// Any JSON value.
struct Json : Object {
    explicit Json(JsonValueType type = JsonValueType::Object, hstring text = {}, double number = 0)
        : Object(L"Windows.Data.Json", Threads::any), type(type), text(std::move(text)), number(number) {
        using Map = foundation::Collections::IMap<hstring, json::IJsonValue>;
        using Vector = foundation::Collections::IVector<json::IJsonValue>;
        add([] {
            using M = Methods<json::IJsonValue>;
            return Answers<Json, json::IJsonValue>()
                .on<&Json::type>(&M::get_ValueType)
                .on<[](Json& self) { return self.stringify(); }>(&M::Stringify)
                .on<[](Json& self) { return self.as(JsonValueType::String).text; }>(&M::GetString)
                .on<[](Json& self) { return self.as(JsonValueType::Number).number; }>(&M::GetNumber)
                .on<[](Json& self) { return self.as(JsonValueType::Boolean).number != 0; }>(&M::GetBoolean);
        });
        add([] {
            return Answers<Json, json::IJsonObject>().on<[](Json& self, const hstring& name) {
                return self.find(name)->second.as<json::JsonValue>();
            }>(&Methods<json::IJsonObject>::GetNamedValue);
        });
        add([] {
            return Answers<Json, Map>()
                .on<[](Json& self, const hstring& name) { return self.find(name) != self.members.end(); }>(
                    &Methods<Map>::HasKey)
                .on<[](Json& self, const hstring& name, const json::IJsonValue& value) {
                    self.members.emplace_back(name, value);
                    return false;
                }>(&Methods<Map>::Insert);
        });
        add([] {
            return Answers<Json, Vector>()
                .on<[](Json& self, const json::IJsonValue& value) { self.members.emplace_back(L"", value); }>(
                    &Methods<Vector>::Append);
        });
        addBare<json::IJsonArray>();
    }

    Json& as(JsonValueType wanted) {
        if (type != wanted) {
            throw winrt::hresult_illegal_method_call();
        }
        return *this;
    }

    std::vector<std::pair<hstring, json::IJsonValue>>::iterator find(const hstring& name) {
        return std::ranges::find(members, name, [](const auto& member) { return member.first; });
    }

    hstring stringify() {
        switch (type) {
            case JsonValueType::Null:
                return L"null";
            case JsonValueType::Boolean:
                return number != 0 ? L"true" : L"false";
            case JsonValueType::Number:
                return winrt::to_hstring(static_cast<std::int64_t>(number));
            case JsonValueType::String:
                return L"\"" + text + L"\"";
            default:
                break;
        }
        const bool isObject = type == JsonValueType::Object;
        std::wstring all;
        for (const auto& [name, member] : members) {
            all += (all.empty() ? L"" : L",") + (isObject ? L"\"" + name + L"\":" : L"") + member.Stringify();
        }
        return isObject ? L"{" + hstring(all) + L"}" : L"[" + hstring(all) + L"]";
    }

    JsonValueType type;
    hstring text;
    double number;
    std::vector<std::pair<hstring, json::IJsonValue>> members;
};

struct JsonArray : Json {
    JsonArray() : Json(JsonValueType::Array) {}
};

json::JsonValue jsonValue(JsonValueType type, const hstring& text, double number = 0) {
    return create<json::JsonValue, Json>(type, text, number);
}

/// Flat objects only, without blanks or escapes.
json::JsonObject parse(const std::wstring& text) {
    auto object = create<json::JsonObject, Json>();
    std::size_t at = 0;
    const auto require = [](bool right) {
        if (!right) {
            throw winrt::hresult_error(static_cast<HRESULT>(0x83750007));
        }
    };
    const auto word = [&] {
        const bool quoted = at < text.size() && text[at] == L'"';
        const auto end = quoted ? text.find(L'"', at + 1) + 1 : text.find_first_of(L":,}", at);
        require(end != 0 && end != std::wstring::npos);
        const std::size_t start = std::exchange(at, end);
        return text.substr(start, end - start);
    };
    const auto value = [&] {
        const std::wstring token = word();
        if (token == L"null") {
            return jsonValue(JsonValueType::Null, L"");
        }
        if (token == L"true" || token == L"false") {
            return jsonValue(JsonValueType::Boolean, L"", token == L"true");
        }
        if (token.front() == L'"') {
            return jsonValue(JsonValueType::String, hstring(token.substr(1, token.size() - 2)));
        }
        require(std::iswdigit(token.front()));
        return jsonValue(JsonValueType::Number, L"", std::stod(token));
    };
    require(text.starts_with(L"{"));
    do {
        ++at;
        const std::wstring name = word();
        require(text[at++] == L':');
        object.Insert(hstring(name.substr(1, name.size() - 2)), value());
    } while (at < text.size() && text[at] == L',');
    return object;
}

}  // namespace

Factories web() {
    return {
        {L"Windows.Data.Json.JsonArray", factory<JsonArray>()},
        {L"Windows.Data.Json.JsonObject",
         statics(activation<Json>,
                 [] {
                     using I = json::IJsonObjectStatics;
                     return Answers<Object, I>()
                         .on<[](Object&, const hstring& text) { return parse(std::wstring(text)); }>(
                             &Methods<I>::Parse);
                 })},
        {L"Windows.Data.Json.JsonValue",
         statics(
             [] {
                 using I = json::IJsonValueStatics;
                 return Answers<Object, I>()
                     .on<[](Object&, const hstring& text) { return jsonValue(JsonValueType::String, text); }>(
                         &Methods<I>::CreateStringValue)
                     .on<[](Object&, double number) {
                         return jsonValue(JsonValueType::Number, L"", number);
                     }>(&Methods<I>::CreateNumberValue)
                     .on<[](Object&, bool flag) { return jsonValue(JsonValueType::Boolean, L"", flag); }>(
                         &Methods<I>::CreateBooleanValue);
             },
             [] {
                 using I = json::IJsonValueStatics2;
                 return Answers<Object, I>().on<[](Object&) { return jsonValue(JsonValueType::Null, L""); }>(
                     &Methods<I>::CreateNullValue);
             })},
        {L"Windows.Foundation.PropertyValue", statics([] {
             using I = foundation::IPropertyValueStatics;
             return Answers<Object, I>().on<[](Object&, std::int64_t ticks) {
                 return create<foundation::IReference<foundation::DateTime>, Time>(ticks);
             }>(&Methods<I>::CreateDateTime);
         })},
        {L"Windows.Web.Http.Filters.HttpBaseProtocolFilter", factory<Filter>()},
        {L"Windows.Web.Http.HttpCookie", statics([] {
             using I = http::IHttpCookieFactory;
             return Answers<Object, I>()
                 .on<[](Object&, const hstring& name, const hstring& domain, const hstring& path) {
                     return create<http::HttpCookie, Cookie>(name, domain, path);
                 }>(&Methods<I>::Create);
         })},
        {L"Windows.Web.Http.HttpMethod", statics([] {
             using I = http::IHttpMethodStatics;
             return Answers<Object, I>().on<[](Object&) { return getMethod(); }>(&Methods<I>::get_Get);
         })},
        {L"Windows.Web.Http.HttpRequestMessage", statics([] {
             using I = http::IHttpRequestMessageFactory;
             return Answers<Object, I>().on<[](Object&, void*, const foundation::Uri& uri) {
                 return create<http::HttpRequestMessage, Request>(uri);
             }>(&Methods<I>::Create);
         })},
    };
}

}  // namespace app
