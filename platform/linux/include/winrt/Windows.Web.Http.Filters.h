#pragma once

#include <winrt/Windows.Web.Http.h>

namespace winrt::Windows::Web::Http::Filters {

/// Access to what all requests of the process have in common.
struct HttpBaseProtocolFilter : Foundation::IInspectable {
    HttpBaseProtocolFilter();
    WINRT_LINUX_HANDLE(HttpBaseProtocolFilter, IInspectable)

    HttpCookieManager CookieManager() const;
};

}  // namespace winrt::Windows::Web::Http::Filters
