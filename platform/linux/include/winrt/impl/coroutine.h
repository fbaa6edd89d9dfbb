#pragma once

#include <chrono>
#include <coroutine>
#include <exception>
#include <functional>
#include <mutex>
#include <optional>
#include <utility>
#include <variant>

#include <winrt/impl/object.h>

namespace winrt::impl {

/// Where code runs: on the user-interface thread, or on any thread of the pool.
enum class apartment { ui, pool };

/// The apartment of the calling thread; every thread but the user-interface thread counts as a pool thread.
apartment current_apartment() noexcept;

/// Continues a coroutine in an apartment: at once when the caller is there already, queued otherwise.
void resume_in(apartment target, std::coroutine_handle<> handle);

/// Runs work on a pool thread.
void submit(std::function<void()> work);

/// Runs work on a pool thread after a while.
void submit_after(std::chrono::nanoseconds delay, std::function<void()> work);

/// What an asynchronous operation and those who wait for it share. Completed once, awaited at most once.
template <typename T>
class async_object : public object {
  public:
    using value_type = std::conditional_t<std::is_void_v<T>, std::monostate, T>;

    /// Ends the operation. A second ending is ignored, so a bound on the time needs no bookkeeping.
    void complete(value_type value = {}) {
        finish([&] { result.emplace(std::move(value)); });
    }
    void fail(std::exception_ptr exception) {
        finish([&] { failure = std::move(exception); });
    }

    /// Asks for an early end. What cannot be given up ends as it would have anyway. Any thread.
    virtual void cancel() {}

    /// Registers the coroutine that waits; false when the operation has ended already. The one result goes to
    /// one coroutine: E_ILLEGAL_DELEGATE_ASSIGNMENT for a second one.
    bool suspend(std::coroutine_handle<> handle) {
        std::lock_guard guard(lock);
        if (std::exchange(awaited, true)) {
            throw hresult_error(E_ILLEGAL_DELEGATE_ASSIGNMENT);
        }
        if (completed) {
            return false;
        }
        waiting = handle;
        home = current_apartment();
        return true;
    }

    value_type take() {
        if (failure) {
            std::rethrow_exception(failure);
        }
        return std::move(*result);
    }

  private:
    template <typename Store>
    void finish(Store const& store) {
        std::coroutine_handle<> continuation;
        {
            std::lock_guard guard(lock);
            if (completed) {
                return;
            }
            store();
            completed = true;
            continuation = std::exchange(waiting, nullptr);
        }
        if (continuation) {
            resume_in(home, continuation);
        }
    }

    std::mutex lock;
    bool completed = false;
    bool awaited = false;
    std::optional<value_type> result;
    std::exception_ptr failure;
    std::coroutine_handle<> waiting;
    apartment home = apartment::pool;
};

template <typename T>
struct async_awaiter {
    std::shared_ptr<async_object<T>> operation;

    bool await_ready() const noexcept { return false; }
    bool await_suspend(std::coroutine_handle<> handle) const { return operation->suspend(handle); }
    T await_resume() const {
        if constexpr (std::is_void_v<T>) {
            operation->take();
        } else {
            return operation->take();
        }
    }
};

/// The end of a coroutine that is itself an operation. The frame is gone before the ending is announced, so
/// whatever it held is released by the time the awaiting side goes on.
struct announcing_awaiter {
    bool await_ready() const noexcept { return false; }
    template <typename Promise>
    void await_suspend(std::coroutine_handle<Promise> handle) const noexcept {
        auto const announce = std::move(handle.promise().announcement);
        handle.destroy();
        announce();
    }
    void await_resume() const noexcept {}
};

template <typename Handle, typename T>
struct async_promise_base {
    std::shared_ptr<async_object<T>> operation = std::make_shared<async_object<T>>();
    std::function<void()> announcement;

    Handle get_return_object() { return Handle(operation); }
    std::suspend_never initial_suspend() noexcept { return {}; }
    announcing_awaiter final_suspend() noexcept { return {}; }
    void unhandled_exception() {
        announcement = [operation = operation, exception = std::current_exception()] {
            operation->fail(exception);
        };
    }
};

template <typename Handle, typename T>
struct async_promise : async_promise_base<Handle, T> {
    void return_value(T value) {
        this->announcement = [operation = this->operation, value = std::move(value)]() mutable {
            operation->complete(std::move(value));
        };
    }
};

template <typename Handle>
struct async_promise<Handle, void> : async_promise_base<Handle, void> {
    void return_void() {
        this->announcement = [operation = this->operation] { operation->complete(); };
    }
};

}  // namespace winrt::impl

namespace winrt {

/// A coroutine that nobody waits for. An exception that leaves it ends the process.
struct fire_and_forget {
    struct promise_type {
        fire_and_forget get_return_object() const noexcept { return {}; }
        std::suspend_never initial_suspend() const noexcept { return {}; }
        std::suspend_never final_suspend() const noexcept { return {}; }
        void return_void() const noexcept {}
        void unhandled_exception() const noexcept { std::terminate(); }
    };
};

/// `co_await resume_background()`: go on, on a pool thread.
inline auto resume_background() noexcept {
    struct awaiter {
        bool await_ready() const noexcept { return false; }
        void await_suspend(std::coroutine_handle<> handle) const { impl::submit(handle); }
        void await_resume() const noexcept {}
    };
    return awaiter{};
}

/// `co_await resume_after(delay)`: go on after a while, on a pool thread.
inline auto resume_after(std::chrono::nanoseconds delay) noexcept {
    struct awaiter {
        std::chrono::nanoseconds delay;
        bool await_ready() const noexcept { return delay.count() <= 0; }
        void await_suspend(std::coroutine_handle<> handle) const { impl::submit_after(delay, handle); }
        void await_resume() const noexcept {}
    };
    return awaiter{delay};
}

}  // namespace winrt
