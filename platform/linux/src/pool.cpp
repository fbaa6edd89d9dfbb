// The thread pool: where coroutines go on that left the user-interface thread, and timers.

#include <algorithm>
#include <condition_variable>
#include <map>
#include <system_error>
#include <thread>

#include "ui_thread.h"

namespace runtime {

namespace {

using clock = std::chrono::steady_clock;

/// Threads that run work in the order in which it falls due. They live as long as the process and are started
/// when there is more work than threads that are idle, up to a limit.
class pool {
  public:
    static pool& instance() {
        static pool* const threads = new pool();  // never destroyed: its threads are not joined
        return *threads;
    }

    void submit(clock::time_point due, std::function<void()> work) {
        std::lock_guard guard(lock);
        auto const added = pending.emplace(due, std::move(work));
        if (pending.size() > idle && count < limit) {
            try {
                std::thread([this] { run(); }).detach();
                ++count;
            } catch (std::system_error const&) {
                if (count == 0) {
                    pending.erase(added);  // or it would be done after it has failed
                    throw;
                }
            }
        }
        changed.notify_one();
    }

  private:
    void run() {
        std::unique_lock guard(lock);
        while (true) {
            ++idle;
            while (pending.empty() || pending.begin()->first > clock::now()) {
                if (pending.empty()) {
                    changed.wait(guard);
                } else {
                    changed.wait_until(guard, clock::time_point(pending.begin()->first));
                }
            }
            --idle;
            auto work = std::move(pending.extract(pending.begin()).mapped());
            guard.unlock();
            work();
            work = nullptr;
            guard.lock();
        }
    }

    std::mutex lock;
    std::condition_variable changed;
    std::multimap<clock::time_point, std::function<void()>> pending;
    unsigned idle = 0;
    unsigned count = 0;
    unsigned const limit = std::max(4U, std::thread::hardware_concurrency());
};

}  // namespace
}  // namespace runtime

namespace winrt::impl {

apartment current_apartment() noexcept {
    return runtime::ui_thread::is_current() ? apartment::ui : apartment::pool;
}

void resume_in(apartment target, std::coroutine_handle<> handle) {
    if (target == current_apartment()) {
        handle.resume();
    } else if (target == apartment::ui) {
        runtime::ui_thread::instance().post(handle);
    } else {
        submit(handle);
    }
}

void submit(std::function<void()> work) {
    submit_after(std::chrono::nanoseconds(0), std::move(work));
}

void submit_after(std::chrono::nanoseconds delay, std::function<void()> work) {
    auto const now = runtime::clock::now();
    // A delay beyond the clock's range would wrap round to the past.
    auto const bounded = std::min<std::chrono::nanoseconds>(delay, std::chrono::hours(24 * 365));
    runtime::pool::instance().submit(now + bounded, std::move(work));
}

}  // namespace winrt::impl
