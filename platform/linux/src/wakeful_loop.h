#pragma once

#include <glib.h>
#include <sched.h>

namespace runtime {

/// Lets the loop of the default main context look for work without sleeping, for a moment. To wake up a
/// processor that sleeps costs more than a short call to a page, on virtual machines several times as much.
/// The thread of that loop only.
class wakeful_loop {
  public:
    wakeful_loop() { g_source_attach(source, nullptr); }
    ~wakeful_loop() {
        g_source_destroy(source);
        g_source_unref(source);
    }
    wakeful_loop(wakeful_loop const&) = delete;
    wakeful_loop& operator=(wakeful_loop const&) = delete;

    /// From now on for a moment that lasts longer than a short call and the next one take to come.
    void stay_awake() {
        constexpr gint64 moment_us = 1000;
        state_of(source)->end = g_get_monotonic_time() + moment_us;
    }

  private:
    struct state {
        GSource base;
        gint64 end;
    };

    static state* state_of(GSource* source) { return reinterpret_cast<state*>(source); }

    static gboolean prepare(GSource* source, int* timeout) {
        if (g_get_monotonic_time() < state_of(source)->end) {
            *timeout = 0;
            sched_yield();  // those whose answer is awaited may need this processor
        }
        return FALSE;
    }

    static inline GSourceFuncs functions = {.prepare = prepare,
                                            .check = nullptr,
                                            .dispatch = nullptr,
                                            .finalize = nullptr,
                                            .closure_callback = nullptr,
                                            .closure_marshal = nullptr};

    GSource* source = g_source_new(&functions, sizeof(state));
};

}  // namespace runtime
