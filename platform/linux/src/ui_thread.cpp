#include "ui_thread.h"

#include <gtk/gtk.h>
#include <libsoup/soup.h>
#include <pthread.h>
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <future>
#include <thread>

namespace runtime {

namespace {

thread_local bool current = false;
std::atomic<ui_thread*> started{nullptr};

/// A one-shot signal that outlives both the side that waits and the side that ends.
struct completion {
    void set() {
        std::lock_guard guard(lock);
        finished = true;
        changed.notify_all();
    }
    bool wait_for(std::chrono::milliseconds bound) {
        std::unique_lock guard(lock);
        return changed.wait_for(guard, bound, [&] { return finished.load(); });
    }

    std::mutex lock;
    std::condition_variable changed;
    std::atomic<bool> finished = false;
};

/// A source that is ready whenever the function says so. A ready time for that would wake the loop up with
/// each change; it is for pauses alone.
GSource* make_queue_source(ui_thread* thread, bool (*is_ready)(ui_thread*), void (*run)(ui_thread*)) {
    struct queue_source {
        GSource base;
        ui_thread* thread;
        bool (*is_ready)(ui_thread*);
        void (*run)(ui_thread*);
    };
    static GSourceFuncs functions = {
        .prepare = [](GSource* source, int*) -> gboolean {
            auto* queue = reinterpret_cast<queue_source*>(source);
            return queue->is_ready(queue->thread) ? TRUE : FALSE;
        },
        .check = [](GSource* source) -> gboolean {
            auto* queue = reinterpret_cast<queue_source*>(source);
            return queue->is_ready(queue->thread) ? TRUE : FALSE;
        },
        .dispatch = [](GSource* source, GSourceFunc, gpointer) -> gboolean {
            auto* queue = reinterpret_cast<queue_source*>(source);
            queue->run(queue->thread);
            return G_SOURCE_CONTINUE;
        },
        .finalize = nullptr,
        .closure_callback = nullptr,
        .closure_marshal = nullptr,
    };
    GSource* source = g_source_new(&functions, sizeof(queue_source));
    reinterpret_cast<queue_source*>(source)->thread = thread;
    reinterpret_cast<queue_source*>(source)->is_ready = is_ready;
    reinterpret_cast<queue_source*>(source)->run = run;
    g_source_set_can_recurse(source, TRUE);
    return source;
}

void initialise_gtk() {
    gtk_disable_setlocale();  // the locale is the host's
    if (!gtk_init_check(nullptr, nullptr)) {
        throw winrt::hresult_error(E_FAIL, L"GTK cannot open a display. Is DISPLAY set?");
    }
}

}  // namespace

ui_thread& ui_thread::instance() {
    // Never destroyed: other threads post until the very end, and a failed start may still be under way.
    static ui_thread* const thread = [] {
        auto* created = new ui_thread();
        created->start();
        return created;
    }();
    return *thread;
}

ui_thread* ui_thread::running() noexcept {
    return started.load();
}

bool ui_thread::is_current() noexcept {
    return current;
}

void ui_thread::require_current() {
    if (!current) {
        throw winrt::hresult_error(RPC_E_WRONG_THREAD);
    }
}

void ui_thread::start() {
    // libsoup loads its list with the first question, and twice if two threads ask at once. The browser
    // engine will ask on the thread that starts here, cookies ask on any.
    soup_tld_domain_is_public_suffix("com");
    source = make_queue_source(
        this, [](ui_thread* thread) { return thread->is_due(); },
        [](ui_thread* thread) { thread->run_queue(); });
    g_source_attach(source, g_main_context_default());
    try {
        if (g_main_context_is_owner(g_main_context_default())) {
            initialise_gtk();
            become_current();
        } else {
            start_own_thread();
        }
    } catch (...) {
        g_source_destroy(source);
        g_source_unref(source);
        throw;
    }
    started.store(this);
    static auto const process = getpid();
    std::atexit([] {
        if (getpid() == process) {  // a process that was forked off has not got the thread
            started.load()->park_at_exit();
        }
    });
}

void ui_thread::start_own_thread() {
    auto ready = std::make_shared<std::promise<bool>>();
    std::thread([this, ready] {
        pthread_setname_np(pthread_self(), "user-interface");
        if (!g_main_context_acquire(g_main_context_default())) {
            ready->set_value(false);
            return;
        }
        try {
            initialise_gtk();
        } catch (...) {
            g_main_context_release(g_main_context_default());
            ready->set_exception(std::current_exception());
            return;
        }
        become_current();
        ready->set_value(true);
        while (true) {
            g_main_context_iteration(g_main_context_default(), TRUE);
        }
    }).detach();
    if (!ready->get_future().get()) {
        adopt_host_thread();
    }
}

void ui_thread::adopt_host_thread() {
    auto ready = std::make_shared<std::promise<void>>();
    auto answer = ready->get_future();
    post([this, ready] {
        try {
            initialise_gtk();
            become_current();
            ready->set_value();
        } catch (...) {
            ready->set_exception(std::current_exception());
        }
    });
    if (answer.wait_for(patience) != std::future_status::ready) {
        throw winrt::hresult_error(
            E_FAIL,
            L"Another thread owns the default main context and does not run it; either run "
            L"it there or leave it to this library.");
    }
    answer.get();
}

void ui_thread::become_current() {
    current = true;
}

void ui_thread::post(std::function<void()> work) {
    {
        std::lock_guard guard(lock);
        queue.push_back(std::move(work));
        if (queue.size() > 1 || current) {
            return;  // the loop knows of the queue, or looks at it before it waits again
        }
    }
    g_main_context_wakeup(g_main_context_default());
}

bool ui_thread::is_due() {
    std::lock_guard guard(lock);
    return held == 0 && !pausing && !queue.empty();
}

/// Runs work for a while: a turn of the loop takes longer than most of it.
void ui_thread::run_queue() {
    end_pause();
    constexpr int64_t longest_turn_us = 1000;
    auto const end = g_get_monotonic_time() + longest_turn_us;
    do {
        auto const work = take_next();
        if (!work) {
            return;
        }
        work();
    } while (g_get_monotonic_time() < end);
    begin_pause();
}

std::function<void()> ui_thread::take_next() {
    std::lock_guard guard(lock);
    if (held != 0 || queue.empty()) {
        return nullptr;
    }
    auto work = std::move(queue.front());
    queue.pop_front();
    return work;
}

/// After a busy stretch the loop gets a moment for what has a lower priority than the queue, such as painting
/// and the page processes' messages.
void ui_thread::begin_pause() {
    auto const now = g_get_monotonic_time();
    constexpr int64_t longest_stretch_us = 4000;
    constexpr int64_t pause_us = 500;
    std::lock_guard guard(lock);
    if (!queue.empty() && now - last_pause >= longest_stretch_us) {
        last_pause = now;
        pausing = true;
        g_source_set_ready_time(source, now + pause_us);
    }
}

void ui_thread::end_pause() {
    std::lock_guard guard(lock);
    if (std::exchange(pausing, false)) {
        g_source_set_ready_time(source, -1);
    }
}

bool ui_thread::wait_for(std::function<void(std::function<void()> finished)> start,
                         std::chrono::milliseconds bound) {
    auto ending = std::make_shared<completion>();
    auto finished = [ending] { ending->set(); };
    if (is_current()) {
        start(finished);
        run_nested_until(ending->finished, bound);
        return ending->finished;
    }
    post([start = std::move(start), finished] { start(finished); });
    return ending->wait_for(bound);
}

void ui_thread::run_nested_until(std::atomic<bool> const& finished, std::chrono::milliseconds bound) {
    {
        std::lock_guard guard(lock);
        ++held;
    }
    bool expired = false;
    // The timer also wakes the context for endings that are reported from another thread.
    auto const deadline = std::chrono::steady_clock::now() + bound;
    guint const timer = g_timeout_add(10, [](gpointer) -> gboolean { return G_SOURCE_CONTINUE; }, nullptr);
    while (!finished && !expired) {
        g_main_context_iteration(g_main_context_default(), TRUE);
        expired = std::chrono::steady_clock::now() >= deadline;
    }
    g_source_remove(timer);
    std::lock_guard guard(lock);
    --held;
}

/// Keeps the thread still while the process's static objects go away: WebKit and GTK would use some of them.
void ui_thread::park_at_exit() {
    if (is_current()) {
        return;
    }
    auto parked = std::make_shared<completion>();
    post([parked] {
        parked->set();
        while (true) {
            std::this_thread::sleep_for(std::chrono::hours(1));
        }
    });
    parked->wait_for(std::chrono::milliseconds(1000));
}

void ui_deleter::operator()(winrt::impl::object* object) const noexcept {
    // Always in a turn of its own: the last reference may go in the middle of one of the object's own calls.
    ui_thread::instance().post([object] { delete object; });
}

}  // namespace runtime
