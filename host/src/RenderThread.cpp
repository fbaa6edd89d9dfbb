#include "zarvik/host/RenderThread.h"

#include <pthread.h>

namespace zarvik::host {

namespace {

std::chrono::steady_clock::duration periodOf(double turnsPerSecond) {
    using std::chrono::steady_clock;
    if (turnsPerSecond <= 0) {
        return steady_clock::duration::zero();
    }
    return std::chrono::duration_cast<steady_clock::duration>(
        std::chrono::duration<double>(1 / turnsPerSecond));
}

}  // namespace

RenderThread::RenderThread(GLContext& context, double turnsPerSecond, std::function<void()> turn)
    : context(context), period(periodOf(turnsPerSecond)), turn(std::move(turn)) {
    std::promise<void> started;
    auto ready = started.get_future();
    thread = std::jthread([this, &started](const std::stop_token& stop) {
        pthread_setname_np(pthread_self(), "render");
        threadId = std::this_thread::get_id();
        try {
            this->context.makeCurrent();
        } catch (...) {
            started.set_exception(std::current_exception());
            return;
        }
        started.set_value();
        loop(stop);
        this->context.release();
    });
    ready.get();
}

void RenderThread::takeTurn() {
    run([this] { turn(); });
}

void RenderThread::post(std::function<void()> task) {
    {
        const std::scoped_lock lock(mutex);
        tasks.push_back(std::move(task));
    }
    wake.notify_one();
}

void RenderThread::loop(const std::stop_token& stop) {
    const bool ticking = period > Clock::duration::zero();
    auto deadline = Clock::now() + period;
    while (!stop.stop_requested()) {
        runTasks();
        if (ticking && Clock::now() >= deadline) {
            takeTurn();
            const auto late = Clock::now() - deadline;
            deadline += (late / period + 1) * period;
        }
        std::unique_lock lock(mutex);
        const auto hasTasks = [this] { return !tasks.empty(); };
        if (ticking) {
            wake.wait_until(lock, stop, deadline, hasTasks);
        } else {
            wake.wait(lock, stop, hasTasks);
        }
    }
}

void RenderThread::runTasks() {
    std::unique_lock lock(mutex);
    const auto due = std::exchange(tasks, {});
    lock.unlock();
    for (const auto& task : due) {
        task();
    }
}

}  // namespace zarvik::host
