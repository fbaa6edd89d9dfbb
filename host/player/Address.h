#pragma once

#include <string>

namespace zarvik::player {

/// A page that comes with the player, by its name; null for any other.
const char* bundledPage(const std::string& name);

/// The URL for what names a page: a URL, a file's path, or a bundled page's name, which stays as it is.
/// Throws std::invalid_argument for anything else.
std::string toUrl(const std::string& page);

/// The URL for what somebody typed: what says no scheme is a web address.
std::string typedToUrl(const std::string& text);

}  // namespace zarvik::player
