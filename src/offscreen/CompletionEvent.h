#pragma once

#include <coroutine>
#include <utility>

/// Happens once; one coroutine can wait for it. Lives on the UI thread.
class CompletionEvent {
  public:
    /// Lets the waiting coroutine go on, inside this call.
    void set() {
        happened = true;
        if (const auto handle = std::exchange(waiting, nullptr)) {
            handle.resume();
        }
    }

    bool await_ready() const noexcept { return happened; }
    void await_suspend(std::coroutine_handle<> handle) noexcept { waiting = handle; }
    void await_resume() const noexcept {}

  private:
    bool happened = false;
    std::coroutine_handle<> waiting;
};
