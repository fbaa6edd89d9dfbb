#pragma once

#include <memory>
#include <utility>

#include <winrt/impl/object.h>

namespace winrt::impl {

/// An interface as those see it who call it: the object of somebody else, with the interface's operations.
/// Specialised beside each interface that applications implement.
template <typename Interface>
struct abi;

/// The operations of an interface, handed on to the class that implements them.
template <typename Derived, typename Interface>
struct produce;

}  // namespace winrt::impl

namespace winrt {

/// The base of a class that implements an interface of the runtime. The class has the interface's operations
/// as plain members; its objects come from `make`.
template <typename Derived, typename Interface>
struct implements : impl::produce<Derived, Interface> {
    using default_interface = Interface;
};

/// A new object of a class that implements an interface.
template <typename Derived, typename... Arguments>
auto make(Arguments&&... arguments) {
    return
        typename Derived::default_interface(std::make_shared<Derived>(std::forward<Arguments>(arguments)...));
}

}  // namespace winrt
