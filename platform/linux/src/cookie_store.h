#pragma once

#include <libsoup/soup.h>

#include <string>
#include <vector>

#include "glib_ptr.h"

namespace runtime {

using soup_cookie_ptr = std::unique_ptr<SoupCookie, release_with<soup_cookie_free>>;

/// The cookies of all web views of the process, as the browser engine's network process keeps them.
///
/// The calls wait for that process, not for any page, and at most `ui_thread::patience`; then they throw
/// RPC_E_TIMEOUT. Any thread, the user-interface thread too.
namespace cookie_store {

/// The cookies that a request to the URI would carry.
std::vector<soup_cookie_ptr> matching(std::string const& uri);

/// Stores a cookie and tells whether it replaced one.
bool add(soup_cookie_ptr cookie);

/// Removes the cookie with the same name, domain and path, whatever its value.
void remove(soup_cookie_ptr cookie);

}  // namespace cookie_store
}  // namespace runtime
