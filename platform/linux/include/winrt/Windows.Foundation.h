#pragma once

#include <winrt/base.h>

namespace winrt::Windows::Foundation {

struct Point {
    float X;
    float Y;
    friend bool operator==(Point const&, Point const&) = default;
};

struct Rect {
    float X;
    float Y;
    float Width;
    float Height;
    friend bool operator==(Rect const&, Rect const&) = default;
};

template <typename Sender, typename Arguments>
struct TypedEventHandler : delegate<Sender, Arguments> {
    using delegate<Sender, Arguments>::delegate;
};

/// An asynchronous operation without a result.
struct IAsyncAction : IInspectable {
    WINRT_LINUX_HANDLE(IAsyncAction, IInspectable)

    auto operator co_await() const {
        return impl::async_awaiter<void>{std::static_pointer_cast<impl::async_object<void>>(implementation)};
    }
};

/// An asynchronous operation with a result of type T.
template <typename T>
struct IAsyncOperation : IInspectable {
    static_assert(impl::is_runtime_type<T>, "the result of an operation must be of a runtime type");

    WINRT_LINUX_HANDLE(IAsyncOperation, IInspectable)

    auto operator co_await() const {
        return impl::async_awaiter<T>{std::static_pointer_cast<impl::async_object<T>>(implementation)};
    }
};

/// An asynchronous operation with a result of type T, which can be given up.
template <typename T, typename Progress>
struct IAsyncOperationWithProgress : IInspectable {
    static_assert(impl::is_runtime_type<T> && impl::is_runtime_type<Progress>,
                  "the result and the progress of an operation must be of a runtime type");

    WINRT_LINUX_HANDLE(IAsyncOperationWithProgress, IInspectable)

    auto operator co_await() const {
        return impl::async_awaiter<T>{std::static_pointer_cast<impl::async_object<T>>(implementation)};
    }

    /// Ends the operation early, if it has not ended: who awaits it gets ERROR_CANCELLED (0x800704C7) when
    /// nothing is under way any more. Any thread.
    void Cancel() const {
        if (!implementation) {
            throw hresult_error(E_POINTER);
        }
        static_cast<impl::async_object<T>&>(*implementation).cancel();
    }
};

/// The names and values of a form, as the query of a URI has them.
struct WwwFormUrlDecoder : IInspectable {
    WINRT_LINUX_HANDLE(WwwFormUrlDecoder, IInspectable)

    /// The decoded value of the first one with the name; E_INVALIDARG when there is none.
    hstring GetFirstValueByName(param::hstring const& name) const;
};

/// An absolute URI. Throws E_INVALIDARG for a text that is none.
struct Uri : IInspectable {
    explicit Uri(param::hstring const& uri);
    WINRT_LINUX_HANDLE(Uri, IInspectable)

    hstring AbsoluteUri() const;
    hstring RawUri() const;
    hstring SchemeName() const;
    hstring Host() const;
    hstring Path() const;
    hstring Query() const;
    WwwFormUrlDecoder QueryParsed() const;

    /// Replaces what is percent-encoded by what it stands for. What is no valid encoding stays as it is.
    static hstring UnescapeComponent(param::hstring const& toUnescape);

    /// Percent-encodes everything but letters, digits and "-._~" of ASCII.
    static hstring EscapeComponent(param::hstring const& toEscape);
};

}  // namespace winrt::Windows::Foundation

template <typename... Arguments>
struct std::coroutine_traits<winrt::Windows::Foundation::IAsyncAction, Arguments...> {
    using promise_type = winrt::impl::async_promise<winrt::Windows::Foundation::IAsyncAction, void>;
};

template <typename T, typename... Arguments>
struct std::coroutine_traits<winrt::Windows::Foundation::IAsyncOperation<T>, Arguments...> {
    using promise_type = winrt::impl::async_promise<winrt::Windows::Foundation::IAsyncOperation<T>, T>;
};
