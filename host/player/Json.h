#pragma once

#include <nlohmann/json.hpp>
#include <string>

namespace zarvik::player {

/// The text under a name; empty if there is none. Pages may send what they like, so nothing is certain.
inline std::string textIn(const nlohmann::json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// A value as a part of a script: only ASCII and no broken characters.
inline std::string toScript(const nlohmann::json& value) {
    return value.dump(-1, ' ', true, nlohmann::json::error_handler_t::replace);
}

}  // namespace zarvik::player
