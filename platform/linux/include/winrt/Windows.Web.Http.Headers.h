#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::Windows::Web::Http::Headers {

/// The header lines of a request, in the order in which they were appended.
struct HttpRequestHeaderCollection : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(HttpRequestHeaderCollection, IInspectable)

    /// False, and nothing is appended, when the name is no token or the value holds what would end the line.
    bool TryAppendWithoutValidation(param::hstring const& name, param::hstring const& value) const;
};

}  // namespace winrt::Windows::Web::Http::Headers
