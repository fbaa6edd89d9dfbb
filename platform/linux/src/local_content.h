#pragma once

#include <webkit2/webkit2.h>

#include <string>
#include <string_view>

#include <winrt/Windows.Web.h>

namespace runtime {

// Local content: what addresses of one scheme stand for, which only web views that were given a resolver can
// load. User-interface thread only.

inline constexpr wchar_t const* local_scheme = L"ms-local-stream";

/// Has the context know the scheme, whose pages are shielded from those of all others, and ask us for what
/// its addresses stand for.
void offer_local_content(WebKitWebContext* context);

/// Whether a URI, as the engine writes it, is one of the scheme.
bool is_local(std::string_view uri);

/// The address of local content.
winrt::Windows::Foundation::Uri local_uri(winrt::hstring const& identifier, winrt::hstring const& path);

/// From now on the resolver answers what pages of the host ask for in this view.
void serve_local_content(WebKitWebView* view, std::string const& host,
                         winrt::Windows::Web::IUriToStreamResolver const& resolver);

}  // namespace runtime
