#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::Windows::UI::Core {

enum class CoreDispatcherPriority : int32_t { Normal = 0 };

using DispatchedHandler = delegate<>;

/// The queue of the user-interface thread.
struct CoreDispatcher : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(CoreDispatcher, IInspectable)

    /// Queues a handler; handlers run in the order in which they were queued. Any thread.
    Foundation::IAsyncAction RunAsync(CoreDispatcherPriority priority,
                                      DispatchedHandler const& handler) const;

    /// Whether the caller is on the user-interface thread.
    bool HasThreadAccess() const;
};

}  // namespace winrt::Windows::UI::Core

namespace winrt {

/// `co_await resume_foreground(dispatcher)`: go on, on the user-interface thread, in turn.
inline auto resume_foreground(
    Windows::UI::Core::CoreDispatcher const& dispatcher,
    Windows::UI::Core::CoreDispatcherPriority priority = Windows::UI::Core::CoreDispatcherPriority::Normal) {
    struct awaiter {
        Windows::UI::Core::CoreDispatcher dispatcher;
        Windows::UI::Core::CoreDispatcherPriority priority{};

        bool await_ready() const noexcept { return false; }
        bool await_resume() const noexcept { return true; }
        void await_suspend(std::coroutine_handle<> handle) const { dispatcher.RunAsync(priority, handle); }
    };
    return awaiter{dispatcher, priority};
}

}  // namespace winrt
