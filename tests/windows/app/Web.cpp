// Cookies, requests and JSON.

#include <algorithm>

#include "World.h"

namespace app {

MakeObject webFactoryOf(const std::wstring& className);

namespace {

using Strings = std::wstring_view;

struct Cookie : Object {
    Cookie(winrt::hstring name, winrt::hstring domain, winrt::hstring path)
        : Object(L"Windows.Web.Http.HttpCookie", Threads::any),
          name(std::move(name)),
          domain(std::move(domain)),
          path(std::move(path)) {
        using I = http::IHttpCookie;
        static const auto table =
            Answers<Cookie, I>()
                .on<[](Cookie& self, void** value) { out(value, self.name); }>(&Methods<I>::get_Name)
                .on<[](Cookie& self, void** value) { out(value, self.value); }>(&Methods<I>::get_Value)
                .on<[](Cookie& self, void** value) { out(value, self.domain); }>(&Methods<I>::get_Domain)
                .on<[](Cookie& self, void** value) { out(value, self.path); }>(&Methods<I>::get_Path)
                .on<[](Cookie& self, void** value) { out(value, self.expires); }>(&Methods<I>::get_Expires)
                .on<[](Cookie& self, bool* value) { *value = self.httpOnly; }>(&Methods<I>::get_HttpOnly)
                .on<[](Cookie& self, bool* value) { *value = self.secure; }>(&Methods<I>::get_Secure)
                .on<[](Cookie& self, void* value) { self.value = in<winrt::hstring>(value); }>(
                    &Methods<I>::put_Value)
                .on<[](Cookie& self, void* value) {
                    self.expires = in<foundation::IReference<foundation::DateTime>>(value);
                }>(&Methods<I>::put_Expires)
                .on<[](Cookie& self, bool value) { self.httpOnly = value; }>(&Methods<I>::put_HttpOnly)
                .on<[](Cookie& self, bool value) { self.secure = value; }>(&Methods<I>::put_Secure);
        add(table);
    }

    winrt::hstring name;
    winrt::hstring domain;
    winrt::hstring path;
    winrt::hstring value;
    foundation::IReference<foundation::DateTime> expires;
    bool httpOnly = false;
    bool secure = false;
};

struct CookieClass : Object {
    CookieClass() : Object(L"HttpCookie's factory", Threads::any) {
        using I = http::IHttpCookieFactory;
        static const auto table =
            Answers<CookieClass, I>()
                .on<[](CookieClass&, void* name, void* domain, void* path, void** cookie) {
                    out(cookie,
                        create<http::HttpCookie, Cookie>(in<winrt::hstring>(name), in<winrt::hstring>(domain),
                                                         in<winrt::hstring>(path)));
                }>(&Methods<I>::Create);
        add(table);
    }
};

/// A time as an object.
struct Time : Object {
    explicit Time(std::int64_t ticks)
        : Object(L"Windows.Foundation.IReference`1", Threads::any), ticks(ticks) {
        using I = foundation::IReference<foundation::DateTime>;
        static const auto table =
            Answers<Time, I>().on<[](Time& self, std::int64_t* value) { *value = self.ticks; }>(
                &Methods<I>::get_Value);
        add(table);
    }

    const std::int64_t ticks;
};

struct PropertyValueClass : Object {
    PropertyValueClass() : Object(L"PropertyValue's statics", Threads::any) {
        using I = foundation::IPropertyValueStatics;
        static const auto table =
            Answers<PropertyValueClass, I>().on<[](PropertyValueClass&, std::int64_t ticks, void** value) {
                auto* const time = new Time(ticks);
                *value = time->query(winrt::guid_of<foundation::IInspectable>());
                time->release();
            }>(&Methods<I>::CreateDateTime);
        add(table);
    }
};

/// The filter and its cookie manager, whose cookies all filters share.
struct Filter : Object {
    Filter() : Object(L"Windows.Web.Http.Filters.HttpBaseProtocolFilter", Threads::any) {
        using I = http::Filters::IHttpBaseProtocolFilter;
        using Manager = http::IHttpCookieManager;
        static const auto table = Answers<Filter, I>().on<[](Filter& self, void** manager) {
            out(manager, project<http::HttpCookieManager>(self));
        }>(&Methods<I>::get_CookieManager);
        static const auto manager =
            Answers<Filter, Manager>()
                .on<[](Filter&, void* cookie, bool* replaced) {
                    remove(in<http::HttpCookie>(cookie));
                    cookies.push_back(in<http::HttpCookie>(cookie));
                    *replaced = false;
                }>(&Methods<Manager>::SetCookie)
                .on<[](Filter&, void* cookie) { remove(in<http::HttpCookie>(cookie)); }>(
                    &Methods<Manager>::DeleteCookie)
                .on<[](Filter&, void* uri, void** found) {
                    const std::wstring url(in<foundation::Uri>(uri).AbsoluteUri());
                    auto matching = winrt::single_threaded_vector<http::HttpCookie>();
                    for (const auto& cookie : cookies) {
                        if (url.find(cookie.Domain()) != std::wstring::npos) {
                            matching.Append(cookie);
                        }
                    }
                    out(found, matching.GetView());
                }>(&Methods<Manager>::GetCookies);
        add(table);
        add(manager);
    }

    static void remove(const http::HttpCookie& cookie) {
        std::erase_if(cookies, [&](const auto& other) {
            return other.Name() == cookie.Name() && other.Domain() == cookie.Domain();
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
        static const auto table =
            Answers<Request, I>()
                .on<[](Request& self, void** uri) { out(uri, self.uri); }>(&Methods<I>::get_RequestUri)
                .on<[](Request& self, void** headers) {
                    out(headers, project<http::Headers::HttpRequestHeaderCollection>(self));
                }>(&Methods<I>::get_Headers);
        static const auto headers =
            Answers<Request, Headers>().on<[](Request&, void* name, void* value, bool* accepted) {
                const std::wstring text(in<winrt::hstring>(name));
                *accepted = !text.empty() && text.find(L' ') == std::wstring::npos;
                if (*accepted) {
                    world().note(L"header " + text + L"=" + std::wstring(in<winrt::hstring>(value)));
                }
            }>(&Methods<Headers>::TryAppendWithoutValidation);
        add(table);
        add(headers);
    }

    foundation::Uri uri;
};

struct RequestClass : Object {
    RequestClass() : Object(L"HttpRequestMessage's factory", Threads::any) {
        using I = http::IHttpRequestMessageFactory;
        static const auto table =
            Answers<RequestClass, I>().on<[](RequestClass&, void*, void* uri, void** request) {
                out(request, create<http::HttpRequestMessage, Request>(in<foundation::Uri>(uri)));
            }>(&Methods<I>::Create);
        add(table);
    }
};

struct Get : Object {
    Get() : Object(L"Windows.Web.Http.HttpMethod", Threads::any) {
        using I = http::IHttpMethodStatics;
        static const auto statics =
            Answers<Get, I>()
                .on<[](Get& self, void** method) { out(method, project<http::HttpMethod>(self)); }>(
                    &Methods<I>::get_Get);
        static const Answers<Get, http::IHttpMethod> table;
        add(statics);
        add(table);
    }
};

using json::JsonValueType;

/// Any JSON value.
struct Json : Object {
    explicit Json(JsonValueType type = JsonValueType::Object)
        : Object(L"Windows.Data.Json", Threads::any), type(type) {
        using Value = json::IJsonValue;
        using Map = foundation::Collections::IMap<winrt::hstring, json::IJsonValue>;
        using Vector = foundation::Collections::IVector<json::IJsonValue>;
        static const auto value =
            Answers<Json, Value>()
                .on<[](Json& self, std::int32_t* type) { *type = static_cast<std::int32_t>(self.type); }>(
                    &Methods<Value>::get_ValueType)
                .on<[](Json& self, void** text) { out(text, self.stringify()); }>(&Methods<Value>::Stringify)
                .on<[](Json& self, void** text) { out(text, self.as(JsonValueType::String).text); }>(
                    &Methods<Value>::GetString)
                .on<[](Json& self, double* number) { *number = self.as(JsonValueType::Number).number; }>(
                    &Methods<Value>::GetNumber)
                .on<[](Json& self, bool* flag) { *flag = self.as(JsonValueType::Boolean).number != 0; }>(
                    &Methods<Value>::GetBoolean);
        static const auto object =
            Answers<Json, json::IJsonObject>().on<[](Json& self, void* name, void** value) {
                out(value, self.find(in<winrt::hstring>(name))->second.as<json::JsonValue>());
            }>(&Methods<json::IJsonObject>::GetNamedValue);
        static const auto map =
            Answers<Json, Map>()
                .on<[](Json& self, void* name, bool* has) {
                    *has = self.find(in<winrt::hstring>(name)) != self.members.end();
                }>(&Methods<Map>::HasKey)
                .on<[](Json& self, void* name, void* value, bool* replaced) {
                    self.members.emplace_back(in<winrt::hstring>(name), in<json::IJsonValue>(value));
                    *replaced = false;
                }>(&Methods<Map>::Insert);
        static const Answers<Json, json::IJsonArray> array;
        static const auto vector = Answers<Json, Vector>().on<[](Json& self, void* value) {
            self.members.emplace_back(L"", in<json::IJsonValue>(value));
        }>(&Methods<Vector>::Append);
        add(value);
        add(object);
        add(map);
        add(array);
        add(vector);
    }

    Json& as(JsonValueType wanted) {
        if (type != wanted) {
            throw winrt::hresult_illegal_method_call();
        }
        return *this;
    }

    std::vector<std::pair<winrt::hstring, json::IJsonValue>>::iterator find(const winrt::hstring& name) {
        return std::ranges::find(members, name, [](const auto& member) { return member.first; });
    }

    winrt::hstring stringify() {
        if (type == JsonValueType::String) {
            return L"\"" + text + L"\"";
        }
        if (type == JsonValueType::Number) {
            return winrt::to_hstring(static_cast<std::int64_t>(number));
        }
        if (type == JsonValueType::Boolean) {
            return number != 0 ? L"true" : L"false";
        }
        if (type == JsonValueType::Null) {
            return L"null";
        }
        const bool isObject = type == JsonValueType::Object;
        std::wstring all(1, isObject ? L'{' : L'[');
        for (const auto& [name, member] : members) {
            all += all.size() > 1 ? L"," : L"";
            all += isObject ? L"\"" + name + L"\":" : L"";
            all += member.Stringify();
        }
        return winrt::hstring(all + (isObject ? L'}' : L']'));
    }

    JsonValueType type;
    winrt::hstring text;
    double number = 0;
    std::vector<std::pair<winrt::hstring, json::IJsonValue>> members;
};

struct JsonArray : Json {
    JsonArray() : Json(JsonValueType::Array) {}
};

template <typename Set>
json::JsonValue jsonValue(JsonValueType type, Set set) {
    auto value = create<json::JsonValue, Json>(type);
    set(behind<Json>(value));
    return value;
}

/// Flat objects only, without escapes in their texts.
json::JsonObject parse(std::wstring text) {
    const winrt::hresult_error invalid(static_cast<HRESULT>(0x83750007));
    auto object = create<json::JsonObject, Json>();
    std::size_t at = 0;
    const auto token = [&] {
        at = text.find_first_not_of(L" \n", at);
        if (at == std::wstring::npos) {
            throw invalid;
        }
        const std::size_t start = at;
        if (text[at] == L'"') {
            at = text.find(L'"', at + 1);
            at = at == std::wstring::npos ? at : at + 1;
        } else if (Strings(L"{}:,").find(text[at]) != Strings::npos) {
            ++at;
        } else {
            at = text.find_first_of(L"{}:, \n", at);
        }
        return text.substr(start, at - start);
    };
    const auto expect = [&](bool right) {
        if (!right) {
            throw invalid;
        }
    };
    expect(token() == L"{");
    for (std::wstring name = token(); name != L"}"; name = token()) {
        name = name == L"," ? token() : name;
        expect(name.front() == L'"' && token() == L":");
        const std::wstring word = token();
        const auto type = word.front() == L'"'                  ? JsonValueType::String
                          : word == L"null"                     ? JsonValueType::Null
                          : word == L"true" || word == L"false" ? JsonValueType::Boolean
                                                                : JsonValueType::Number;
        expect(type != JsonValueType::Number || std::iswdigit(word.front()));
        object.Insert(winrt::hstring(name.substr(1, name.size() - 2)), jsonValue(type, [&](Json& value) {
                          value.text = type == JsonValueType::String ? word.substr(1, word.size() - 2) : L"";
                          value.number = type == JsonValueType::Number ? std::stod(word) : word == L"true";
                      }));
    }
    return object;
}

struct JsonValueClass : Object {
    JsonValueClass() : Object(L"JsonValue's statics", Threads::any) {
        using I = json::IJsonValueStatics;
        static const auto table =
            Answers<JsonValueClass, I>()
                .on<[](JsonValueClass&, void* text, void** value) {
                    out(value, jsonValue(JsonValueType::String,
                                         [&](Json& made) { made.text = in<winrt::hstring>(text); }));
                }>(&Methods<I>::CreateStringValue)
                .on<[](JsonValueClass&, double number, void** value) {
                    out(value, jsonValue(JsonValueType::Number, [&](Json& made) { made.number = number; }));
                }>(&Methods<I>::CreateNumberValue)
                .on<[](JsonValueClass&, bool flag, void** value) {
                    out(value, jsonValue(JsonValueType::Boolean, [&](Json& made) { made.number = flag; }));
                }>(&Methods<I>::CreateBooleanValue);
        static const auto null =
            Answers<JsonValueClass, json::IJsonValueStatics2>().on<[](JsonValueClass&, void** value) {
                out(value, jsonValue(JsonValueType::Null, [](Json&) {}));
            }>(&Methods<json::IJsonValueStatics2>::CreateNullValue);
        add(table);
        add(null);
    }
};

struct JsonObjectClass : Factory<Json> {
    JsonObjectClass() {
        using I = json::IJsonObjectStatics;
        static const auto table =
            Answers<JsonObjectClass, I>().on<[](JsonObjectClass&, void* text, void** object) {
                out(object, parse(std::wstring(in<winrt::hstring>(text))));
            }>(&Methods<I>::Parse);
        add(table);
    }
};

}  // namespace

MakeObject webFactoryOf(const std::wstring& className) {
    static const std::map<std::wstring, MakeObject> factories = {
        {L"Windows.Data.Json.JsonArray", make<Factory<JsonArray>>},
        {L"Windows.Data.Json.JsonObject", make<JsonObjectClass>},
        {L"Windows.Data.Json.JsonValue", make<JsonValueClass>},
        {L"Windows.Foundation.PropertyValue", make<PropertyValueClass>},
        {L"Windows.Web.Http.Filters.HttpBaseProtocolFilter", make<Factory<Filter>>},
        {L"Windows.Web.Http.HttpCookie", make<CookieClass>},
        {L"Windows.Web.Http.HttpMethod", make<Get>},
        {L"Windows.Web.Http.HttpRequestMessage", make<RequestClass>},
    };
    const auto found = factories.find(className);
    return found == factories.end() ? nullptr : found->second;
}

}  // namespace app
