#pragma once

#include <webkit2/webkit2.h>

namespace runtime {

/// What all web views of the process share: cookies, storage, cache, the sandbox. User-interface thread only.
WebKitWebContext* web_context();

}  // namespace runtime
