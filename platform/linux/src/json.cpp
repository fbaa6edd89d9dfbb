#include <winrt/Windows.Data.Json.h>

#include <cmath>
#include <nlohmann/json.hpp>
#include <variant>

#include "implementation.h"

namespace runtime {

namespace {

using winrt::Windows::Data::Json::JsonValueType;

struct json_node;
using node_ptr = std::shared_ptr<json_node>;
using json_elements = std::vector<node_ptr>;
using json_members = std::vector<std::pair<std::string, node_ptr>>;

/// A JSON value and, in an array or object, references to others. The alternatives stand in the order of
/// JsonValueType.
struct json_node : winrt::impl::object {
    using value_type = std::variant<std::nullptr_t, bool, double, std::string, json_elements, json_members>;

    explicit json_node(value_type value) : value(std::move(value)) {}

    value_type value;
};

/// How deeply values may be nested. The bound keeps a text from exhausting the stack, and a value that was
/// put into itself from being written without end.
constexpr int deepest = 512;

// Whole numbers up to here are exact, and are written without a fraction.
constexpr double largestWholeNumber = 9007199254740992.0;

node_ptr make_node(json_node::value_type value) {
    return std::make_shared<json_node>(std::move(value));
}

[[noreturn]] void refuse_text(wchar_t const* reason) {
    throw winrt::hresult_error(WEB_E_INVALID_JSON_STRING, reason);
}

node_ptr from_json(nlohmann::ordered_json const& json, int depth = 0) {
    if (depth > deepest) {
        refuse_text(L"Invalid JSON string: it is nested too deeply.");
    }
    if (json.is_object()) {
        json_members members;
        for (auto const& [name, value] : json.items()) {
            members.emplace_back(name, from_json(value, depth + 1));
        }
        return make_node(std::move(members));
    }
    if (json.is_array()) {
        json_elements elements;
        for (auto const& value : json) {
            elements.push_back(from_json(value, depth + 1));
        }
        return make_node(std::move(elements));
    }
    if (json.is_string()) {
        return make_node(json.get<std::string>());
    }
    if (json.is_number()) {
        return make_node(json.get<double>());
    }
    if (json.is_boolean()) {
        return make_node(json.get<bool>());
    }
    return make_node(nullptr);
}

/// Writes one alternative of a value.
struct to_json {
    int depth = 0;

    nlohmann::ordered_json operator()(node_ptr const& node) const {
        if (depth > deepest) {
            throw winrt::hresult_error(E_ILLEGAL_METHOD_CALL,
                                       L"The JSON value is nested too deeply to be written.");
        }
        return std::visit(to_json{depth + 1}, node->value);
    }
    nlohmann::ordered_json operator()(double number) const {
        bool const whole = std::abs(number) <= largestWholeNumber && std::trunc(number) == number;
        return whole ? nlohmann::ordered_json(static_cast<int64_t>(number)) : nlohmann::ordered_json(number);
    }
    nlohmann::ordered_json operator()(json_elements const& elements) const {
        auto json = nlohmann::ordered_json::array();
        for (auto const& element : elements) {
            json.push_back((*this)(element));
        }
        return json;
    }
    nlohmann::ordered_json operator()(json_members const& members) const {
        auto json = nlohmann::ordered_json::object();
        for (auto const& [name, value] : members) {
            json[name] = (*this)(value);
        }
        return json;
    }
    nlohmann::ordered_json operator()(auto const& value) const { return value; }
};

node_ptr parse_object(std::string const& text) {
    try {
        auto const json = nlohmann::ordered_json::parse(text);
        if (!json.is_object()) {
            refuse_text(L"Invalid JSON string: it is no object.");
        }
        return from_json(json);
    } catch (nlohmann::json::parse_error const& error) {
        throw winrt::hresult_error(
            WEB_E_INVALID_JSON_STRING,
            winrt::to_hstring("Invalid JSON string: error at byte " + std::to_string(error.byte) + "."));
    } catch (nlohmann::json::exception const&) {
        refuse_text(L"Invalid JSON string: a number is out of range.");
    }
}

/// What a value holds, which must be a T.
template <typename T>
T& value_of(winrt::Windows::Data::Json::IJsonValue const& handle) {
    auto* const value = std::get_if<T>(&implementation_of<json_node>(handle)->value);
    if (!value) {
        throw winrt::hresult_error(E_ILLEGAL_METHOD_CALL, L"The JSON value is of another type.");
    }
    return *value;
}

node_ptr* find(winrt::Windows::Data::Json::JsonObject const& object, std::string const& name) {
    for (auto& [memberName, value] : value_of<json_members>(object)) {
        if (memberName == name) {
            return &value;
        }
    }
    return nullptr;
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::Data::Json {

using runtime::implementation_of;
using runtime::json_elements;
using runtime::json_members;
using runtime::json_node;
using runtime::make_node;
using runtime::value_of;

JsonValueType IJsonValue::ValueType() const {
    return static_cast<JsonValueType>(implementation_of<json_node>(*this)->value.index());
}

hstring IJsonValue::Stringify() const {
    return to_hstring(runtime::to_json{}(implementation_of<json_node>(*this)).dump());
}

hstring IJsonValue::GetString() const {
    return to_hstring(value_of<std::string>(*this));
}

double IJsonValue::GetNumber() const {
    return value_of<double>(*this);
}

bool IJsonValue::GetBoolean() const {
    return value_of<bool>(*this);
}

JsonValue JsonValue::CreateNullValue() {
    return JsonValue(make_node(nullptr));
}

JsonValue JsonValue::CreateBooleanValue(bool input) {
    return JsonValue(make_node(input));
}

JsonValue JsonValue::CreateNumberValue(double input) {
    if (!std::isfinite(input)) {
        throw hresult_error(E_INVALIDARG, L"JSON has no infinite numbers.");
    }
    return JsonValue(make_node(input));
}

JsonValue JsonValue::CreateStringValue(param::hstring const& input) {
    return JsonValue(make_node(to_string(input.value)));
}

JsonArray::JsonArray() : IJsonValue(make_node(json_elements())) {}

void JsonArray::Append(IJsonValue const& value) const {
    value_of<json_elements>(*this).push_back(implementation_of<json_node>(value));
}

JsonObject::JsonObject() : IJsonValue(make_node(json_members())) {}

JsonObject JsonObject::Parse(param::hstring const& input) {
    return JsonObject(runtime::parse_object(to_string(input.value)));
}

bool JsonObject::HasKey(param::hstring const& key) const {
    return runtime::find(*this, to_string(key.value));
}

JsonValue JsonObject::GetNamedValue(param::hstring const& name) const {
    auto const* const found = runtime::find(*this, to_string(name.value));
    if (!found) {
        throw hresult_error(WEB_E_JSON_VALUE_NOT_FOUND,
                            L"The JSON value was not found: " + std::wstring(name.value));
    }
    return JsonValue(*found);
}

bool JsonObject::Insert(param::hstring const& key, IJsonValue const& value) const {
    auto node = implementation_of<json_node>(value);
    auto name = to_string(key.value);
    if (auto* const found = runtime::find(*this, name)) {
        *found = std::move(node);
        return true;
    }
    value_of<json_members>(*this).emplace_back(std::move(name), std::move(node));
    return false;
}

}  // namespace winrt::Windows::Data::Json
