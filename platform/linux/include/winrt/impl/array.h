#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>
#include <utility>

namespace winrt {

/// A view of elements that somebody else owns, for the duration of a call.
template <typename T>
class array_view {
  public:
    array_view() noexcept = default;
    array_view(T* first, T* last) noexcept : elements(first), count(static_cast<uint32_t>(last - first)) {}
    template <typename Container>
        requires requires(Container& container) { static_cast<T*>(container.data()); }
    array_view(Container& container) noexcept
        : elements(container.data()), count(static_cast<uint32_t>(container.size())) {}
    template <typename Container>
        requires std::is_const_v<T> &&
                     requires(Container const& container) { static_cast<T*>(container.data()); }
    array_view(Container const& container) noexcept
        : elements(container.data()), count(static_cast<uint32_t>(container.size())) {}

    T* data() const noexcept { return elements; }
    uint32_t size() const noexcept { return count; }
    bool empty() const noexcept { return count == 0; }
    T* begin() const noexcept { return elements; }
    T* end() const noexcept { return elements + count; }

  private:
    T* elements = nullptr;
    uint32_t count = 0;
};

/// An array that a call gives away. It holds its elements by reference, so that pixels pass through without
/// a copy; it can be moved, not copied.
template <typename T>
class com_array {
  public:
    com_array() noexcept = default;
    com_array(std::shared_ptr<T> elements, uint32_t count) noexcept
        : elements(std::move(elements)), count(count) {}
    com_array(com_array&& other) noexcept
        : elements(std::move(other.elements)), count(std::exchange(other.count, 0)) {}
    com_array& operator=(com_array&& other) noexcept {
        elements = std::move(other.elements);
        count = std::exchange(other.count, 0);
        return *this;
    }

    T* data() noexcept { return elements.get(); }
    T const* data() const noexcept { return elements.get(); }
    uint32_t size() const noexcept { return count; }
    bool empty() const noexcept { return count == 0; }

  private:
    std::shared_ptr<T> elements;
    uint32_t count = 0;
};

}  // namespace winrt
