#pragma once

#include <functional>
#include <string>

namespace runtime {

/// The user agent that was set for the process; empty for the browser engine's own. Any thread.
std::string user_agent();

/// The user agent that requests carry: the one that was set, or the browser engine's own. Any thread.
std::string effective_user_agent();

/// Sets who is told of changes. The listener runs on the thread of the change and must not block: it only
/// posts.
void set_user_agent_listener(std::function<void(std::string const&)> listener);

}  // namespace runtime
