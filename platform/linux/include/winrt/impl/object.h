#pragma once

#include <memory>
#include <type_traits>

#include <winrt/impl/error.h>
#include <winrt/impl/guid.h>

namespace winrt::impl {

/// What every runtime object is made of: the handles of the public headers share one of these.
class object {
  public:
    object() = default;
    object(object const&) = delete;
    object& operator=(object const&) = delete;
    virtual ~object() = default;
};

/// Whether an implementation object carries the runtime type T. Specialised beside the implementations, so
/// that the public headers need not know them.
template <typename T>
bool is_a(object const& candidate) noexcept;

}  // namespace winrt::impl

namespace winrt::Windows::Foundation {

/// The base of every handle: a reference to a runtime object, or null. Handles copy the class inheritance of
/// the runtime types, so a derived handle converts to its base and all of them compare by identity.
struct IInspectable {
    void* operator new(size_t) = delete;
    IInspectable(std::nullptr_t = nullptr) noexcept {}
    explicit IInspectable(std::shared_ptr<impl::object> implementation) noexcept
        : implementation(std::move(implementation)) {}

    explicit operator bool() const noexcept { return implementation != nullptr; }
    friend bool operator==(IInspectable const& left, IInspectable const& right) noexcept {
        return left.implementation == right.implementation;
    }

    /// The same object as another type; null when it is not of that type.
    template <typename To>
    To try_as() const noexcept {
        return implementation && impl::is_a<To>(*implementation) ? To(implementation) : To(nullptr);
    }

    /// The same object as another type; E_NOINTERFACE when it is not of that type.
    template <typename To>
    To as() const {
        if (implementation && !impl::is_a<To>(*implementation)) {
            throw hresult_error(E_NOINTERFACE);
        }
        return To(implementation);
    }

    std::shared_ptr<impl::object> const& get_implementation() const noexcept { return implementation; }

  protected:
    std::shared_ptr<impl::object> implementation;
};

}  // namespace winrt::Windows::Foundation

namespace winrt::impl {

template <typename T, typename... Others>
inline constexpr bool is_one_of = (std::is_same_v<T, Others> || ...);

/// What a generic runtime type may be made of; C++ types of any other kind do not cross the runtime's
/// boundary.
template <typename T>
inline constexpr bool is_runtime_type = std::is_base_of_v<Windows::Foundation::IInspectable, T> ||
                                        is_one_of<T, bool, uint8_t, int16_t, uint16_t, int32_t, uint32_t,
                                                  int64_t, uint64_t, float, double, char16_t, hstring, guid>;

}  // namespace winrt::impl

namespace winrt {

/// A reference that does not keep its object alive.
template <typename T>
class weak_ref {
  public:
    weak_ref(std::nullptr_t = nullptr) noexcept {}
    weak_ref(T const& object) noexcept : implementation(object.get_implementation()) {}

    T get() const noexcept {
        auto alive = implementation.lock();
        return alive ? T(std::move(alive)) : T(nullptr);
    }

  private:
    std::weak_ptr<impl::object> implementation;
};

template <typename T>
weak_ref<T> make_weak(T const& object) noexcept {
    return object;
}

}  // namespace winrt

/// The constructors that every handle has: from nothing, and from its implementation.
#define WINRT_LINUX_HANDLE(Type, Base)               \
    Type(std::nullptr_t) noexcept : Base(nullptr) {} \
    explicit Type(std::shared_ptr<::winrt::impl::object> object) noexcept : Base(std::move(object)) {}
