#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::Windows::Data::Json {

enum class JsonValueType : int32_t { Null = 0, Boolean = 1, Number = 2, String = 3, Array = 4, Object = 5 };

/// Any JSON value. Values are objects: what was put into an array or object stays shared with whoever put it
/// there. Not for several threads at once.
struct IJsonValue : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(IJsonValue, IInspectable)

    JsonValueType ValueType() const;

    /// The value as JSON text without blanks, members in the order of their insertion.
    hstring Stringify() const;

    // The value as what it is; E_ILLEGAL_METHOD_CALL when it is of another type.
    hstring GetString() const;
    double GetNumber() const;
    bool GetBoolean() const;
};

struct JsonValue : IJsonValue {
    WINRT_LINUX_HANDLE(JsonValue, IJsonValue)

    static JsonValue CreateNullValue();
    static JsonValue CreateBooleanValue(bool input);
    /// E_INVALIDARG for what JSON has no number for.
    static JsonValue CreateNumberValue(double input);
    static JsonValue CreateStringValue(param::hstring const& input);
};

struct JsonArray : IJsonValue {
    JsonArray();
    WINRT_LINUX_HANDLE(JsonArray, IJsonValue)

    void Append(IJsonValue const& value) const;
};

struct JsonObject : IJsonValue {
    JsonObject();
    WINRT_LINUX_HANDLE(JsonObject, IJsonValue)

    /// WEB_E_INVALID_JSON_STRING when the text is not that of a JSON object.
    static JsonObject Parse(param::hstring const& input);

    bool HasKey(param::hstring const& key) const;

    /// WEB_E_JSON_VALUE_NOT_FOUND when there is none.
    JsonValue GetNamedValue(param::hstring const& name) const;

    /// Adds a member, or replaces the one with the same name; tells whether it replaced one.
    bool Insert(param::hstring const& key, IJsonValue const& value) const;
};

}  // namespace winrt::Windows::Data::Json
