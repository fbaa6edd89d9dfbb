#pragma once

#include <webkit2/webkit2.h>

#include <winrt/Windows.Web.Http.h>

#include "glib_ptr.h"

namespace runtime {

/// The request as the browser engine takes it; E_INVALIDARG when it does not go to http or https, the only
/// ones whose requests have headers. User-interface thread only.
gobject_ptr<WebKitURIRequest> engine_request(winrt::Windows::Web::Http::HttpRequestMessage const& message);

}  // namespace runtime
