#pragma once

#include <winrt/base.h>

namespace runtime {

/// The implementation behind a handle, which must be one of `Object`; E_POINTER for a null handle.
template <typename Object>
std::shared_ptr<Object> implementation_of(winrt::Windows::Foundation::IInspectable const& handle) {
    if (!handle) {
        throw winrt::hresult_error(E_POINTER);
    }
    return std::static_pointer_cast<Object>(handle.get_implementation());
}

}  // namespace runtime
