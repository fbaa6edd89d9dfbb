#pragma once

#include <initializer_list>
#include <iterator>
#include <vector>

#include <winrt/Windows.Foundation.h>

namespace winrt::impl {

template <typename T>
struct vector_view_object : object {
    explicit vector_view_object(std::vector<T> elements) : elements(std::move(elements)) {}

    std::vector<T> const elements;
};

}  // namespace winrt::impl

namespace winrt::Windows::Foundation::Collections {

/// A list that does not change.
template <typename T>
struct IVectorView : IInspectable {
    WINRT_LINUX_HANDLE(IVectorView, IInspectable)

    uint32_t Size() const { return static_cast<uint32_t>(elements().size()); }

    /// E_BOUNDS beyond the end.
    T GetAt(uint32_t index) const {
        if (index >= elements().size()) {
            throw hresult_error(E_BOUNDS);
        }
        return elements()[index];
    }

    /// An iterator keeps the list alive, so that a loop may run over the result of a call.
    class iterator {
      public:
        using iterator_category = std::input_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = T*;
        using reference = T;

        iterator(IVectorView list, uint32_t index) : list(std::move(list)), index(index) {}

        T operator*() const { return list.GetAt(index); }
        iterator& operator++() {
            ++index;
            return *this;
        }
        friend bool operator==(iterator const& left, iterator const& right) = default;

      private:
        IVectorView list;
        uint32_t index;
    };

    iterator begin() const { return {*this, 0}; }
    iterator end() const { return {*this, Size()}; }

  private:
    std::vector<T> const& elements() const {
        if (!implementation) {
            throw hresult_error(E_POINTER);
        }
        return static_cast<impl::vector_view_object<T> const&>(*implementation).elements;
    }
};

}  // namespace winrt::Windows::Foundation::Collections

namespace winrt::param {

/// What an asynchronous call takes where a sequence is wanted.
template <typename T>
struct async_iterable {
    async_iterable(std::nullptr_t) noexcept {}
    async_iterable(std::vector<T>&& values) : elements(std::move(values)) {}
    async_iterable(std::initializer_list<T> values) : elements(values) {}
    async_iterable(async_iterable const&) = delete;
    async_iterable& operator=(async_iterable const&) = delete;

    std::vector<T> elements;
};

}  // namespace winrt::param
