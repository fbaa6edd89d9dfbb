#pragma once

#include <atomic>
#include <chrono>
#include <deque>
#include <functional>
#include <mutex>
#include <optional>

#include <winrt/base.h>

using GSource = struct _GSource;

namespace runtime {

/// The user-interface thread: it owns the default main context, GTK and every object of the element tree.
///
/// GTK 3 serves the default main context, so this thread has to own it. When the host already runs that
/// context, the host's thread becomes the user-interface thread instead of one of our own. The thread lives
/// as long as the process.
class ui_thread {
  public:
    /// The thread, started on the first call. Throws when it cannot be had. Any thread.
    static ui_thread& instance();

    /// The thread if it runs already. Any thread.
    static ui_thread* running() noexcept;

    /// Whether the caller is on the user-interface thread. Any thread.
    static bool is_current() noexcept;

    /// Throws RPC_E_WRONG_THREAD on any other thread.
    static void require_current();

    /// Queues work; work runs in order, and not inside other work. Work must not throw. Any thread.
    void post(std::function<void()> work);

    /// Starts something on the user-interface thread and waits for its ending, at most for `bound`; false
    /// when the time is over. `start` receives the function that reports the ending, which may be called
    /// later and from any thread, also after the wait was given up. Called on the user-interface thread
    /// itself it runs the main context meanwhile, with our own queue held back. Any thread.
    bool wait_for(std::function<void(std::function<void()> finished)> start, std::chrono::milliseconds bound);

    /// Runs a function on the user-interface thread and returns its result or throws its exception; E_FAIL
    /// and a text when the thread does not get to it within `bound`. Any thread.
    template <typename Function>
    auto invoke(Function function, std::chrono::milliseconds bound = patience) {
        using result_type = std::invoke_result_t<Function&>;
        if (is_current()) {
            return function();
        }
        struct call {
            std::optional<std::conditional_t<std::is_void_v<result_type>, std::monostate, result_type>>
                result;
            std::exception_ptr failure;
        };
        auto shared = std::make_shared<call>();
        bool const finished = wait_for(
            [shared, function = std::move(function)](auto const& done) mutable {
                try {
                    if constexpr (std::is_void_v<result_type>) {
                        function();
                        shared->result.emplace();
                    } else {
                        shared->result.emplace(function());
                    }
                } catch (...) {
                    shared->failure = std::current_exception();
                }
                done();
            },
            bound);
        if (!finished) {
            throw winrt::hresult_error(RPC_E_TIMEOUT, L"The user-interface thread did not answer in time.");
        }
        if (shared->failure) {
            std::rethrow_exception(shared->failure);
        }
        if constexpr (!std::is_void_v<result_type>) {
            return std::move(*shared->result);
        }
    }

    /// How long a call from another thread waits before it gives up.
    static constexpr std::chrono::milliseconds patience{5000};

  private:
    ui_thread() = default;
    void start();
    void start_own_thread();
    void adopt_host_thread();
    void become_current();
    bool is_due();
    void run_queue();
    std::function<void()> take_next();
    void begin_pause();
    void end_pause();
    void run_nested_until(std::atomic<bool> const& finished, std::chrono::milliseconds bound);
    void park_at_exit();

    std::mutex lock;
    std::deque<std::function<void()>> queue;
    GSource* source = nullptr;
    bool pausing = false;
    int64_t last_pause = 0;
    int held = 0;  // nested waits on the thread itself
};

/// Destroys implementation objects of the element tree, and whatever else holds GTK objects, on the
/// user-interface thread, wherever the last reference was dropped.
struct ui_deleter {
    void operator()(winrt::impl::object* object) const noexcept;
};

template <typename T, typename... Arguments>
std::shared_ptr<T> make_ui_object(Arguments&&... arguments) {
    return std::shared_ptr<T>(new T(std::forward<Arguments>(arguments)...), ui_deleter{});
}

}  // namespace runtime
