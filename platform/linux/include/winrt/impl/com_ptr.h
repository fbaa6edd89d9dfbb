#pragma once

#include <unknwn.h>

#include <utility>

namespace winrt {

/// A counted reference to a COM object.
template <typename T>
class com_ptr {
  public:
    com_ptr(std::nullptr_t = nullptr) noexcept {}
    com_ptr(com_ptr const& other) noexcept : pointer(other.pointer) { add_reference(); }
    com_ptr(com_ptr&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    ~com_ptr() { release_reference(); }

    com_ptr& operator=(com_ptr other) noexcept {
        std::swap(pointer, other.pointer);
        return *this;
    }

    explicit operator bool() const noexcept { return pointer != nullptr; }
    T* operator->() const noexcept { return pointer; }
    T& operator*() const noexcept { return *pointer; }
    T* get() const noexcept { return pointer; }

    /// Where a call stores a reference that it gives away, in place of the one held.
    T** put() noexcept {
        release_reference();
        return &pointer;
    }
    void** put_void() noexcept { return reinterpret_cast<void**>(put()); }

    /// Takes over a reference that the caller owns.
    void attach(T* reference) noexcept {
        release_reference();
        pointer = reference;
    }
    /// Gives the reference away.
    T* detach() noexcept { return std::exchange(pointer, nullptr); }

    void copy_from(T* other) noexcept {
        if (other) {
            other->AddRef();
        }
        attach(other);
    }
    void copy_to(T** target) const noexcept {
        add_reference();
        *target = pointer;
    }

    friend bool operator==(com_ptr const& left, com_ptr const& right) noexcept = default;
    friend bool operator==(com_ptr const& left, std::nullptr_t) noexcept { return left.pointer == nullptr; }

  private:
    void add_reference() const noexcept {
        if (pointer) {
            pointer->AddRef();
        }
    }
    void release_reference() noexcept {
        if (auto* old = std::exchange(pointer, nullptr)) {
            old->Release();
        }
    }

    T* pointer = nullptr;
};

}  // namespace winrt
