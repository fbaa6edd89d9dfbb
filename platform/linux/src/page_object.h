#pragma once

#include <string>
#include <vector>

#include <winrt/base.h>

namespace runtime {

/// An object that pages may be given: each of its methods takes one text. Called on the user-interface
/// thread.
struct page_object : winrt::impl::object {
    virtual std::vector<std::string> methods() const = 0;
    virtual void call(size_t method, winrt::hstring const& text) = 0;
};

}  // namespace runtime
