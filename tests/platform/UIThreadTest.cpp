#include "ui_thread.h"

#include <glib.h>
#include <gtest/gtest.h>

#include <cstdlib>

using runtime::ui_thread;

namespace {

/// A host whose thread runs the default main context, and makes its first call from there.
void callWithinOwnLoop() {
    auto* const loop = g_main_loop_new(nullptr, FALSE);
    g_idle_add(
        [](gpointer) -> gboolean {
            auto& thread = ui_thread::instance();
            bool const isCurrent = ui_thread::is_current();
            thread.post([=] { std::exit(isCurrent && ui_thread::is_current() ? 7 : 1); });
            return G_SOURCE_REMOVE;
        },
        nullptr);
    g_main_loop_run(loop);
}

}  // namespace

TEST(UIThreadTest, IsTheHostsThreadThatRunsTheMainContext) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(callWithinOwnLoop(), testing::ExitedWithCode(7), "");
}
