#pragma once

#include <optional>

#include <winrt/impl/object.h>

namespace winrt::impl {

template <typename T>
struct reference_object : object {
    explicit reference_object(T const& value) : value(value) {}

    T const value;
};

}  // namespace winrt::impl

namespace winrt::Windows::Foundation {

/// A value that may be missing.
template <typename T>
struct IReference : IInspectable {
    IReference(T const& value) : IInspectable(std::make_shared<impl::reference_object<T>>(value)) {}
    IReference(std::optional<T> const& value) : IReference(value ? IReference(*value) : nullptr) {}
    IReference(std::nullptr_t = nullptr) noexcept {}

    /// The value; E_POINTER when it is missing.
    T Value() const {
        if (!implementation) {
            throw hresult_error(E_POINTER);
        }
        return static_cast<impl::reference_object<T> const&>(*implementation).value;
    }

    operator std::optional<T>() const { return implementation ? std::optional<T>(Value()) : std::nullopt; }
};

}  // namespace winrt::Windows::Foundation
