#pragma once

#include <string>
#include <string_view>

namespace zarvik::player {

/// Whether the plug-in takes this name of a key; characters are typed instead.
bool isKeyName(std::string_view name);

/// All of them, for people.
std::string keyNames();

}  // namespace zarvik::player
