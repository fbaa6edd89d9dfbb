#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

#include "zarvik/host/GLContext.h"

namespace zarvik::host {

/// The engine's render thread: takes a turn at a fixed rate, with the GL context current, and runs what other
/// threads ask it to run between the turns. It waits for absolute deadlines, so the rate does not drift; a
/// turn that takes too long loses the deadlines that it missed. Its end waits for the running turn; requests
/// made later are never run.
class RenderThread {
  public:
    /// `turnsPerSecond` 0: no turn comes by itself. The context must outlive this object. Throws what making
    /// the context current throws.
    RenderThread(GLContext& context, double turnsPerSecond, std::function<void()> turn);

    /// Runs the function on the render thread and returns its result. Any thread; inline on the render
    /// thread.
    template <typename Function>
    auto run(Function&& function) {
        using Result = std::invoke_result_t<Function>;
        if (isCurrent()) {
            return std::forward<Function>(function)();
        }
        auto task = std::make_shared<std::packaged_task<Result()>>(std::forward<Function>(function));
        auto result = task->get_future();
        post([task] { (*task)(); });
        return result.get();
    }

    /// One turn now, beside those of the clock.
    void takeTurn();

    bool isCurrent() const { return std::this_thread::get_id() == threadId.load(); }

  private:
    using Clock = std::chrono::steady_clock;

    void post(std::function<void()> task);
    void loop(const std::stop_token& stop);
    void runTasks();

    GLContext& context;
    const Clock::duration period;
    const std::function<void()> turn;
    std::atomic<std::thread::id> threadId;

    std::mutex mutex;
    std::condition_variable_any wake;
    std::vector<std::function<void()>> tasks;

    std::jthread thread;  // last: it uses all of the above
};

}  // namespace zarvik::host
