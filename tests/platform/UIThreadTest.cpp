#include "ui_thread.h"

#include <glib.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

using namespace std::chrono_literals;
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
    auto const begin = std::chrono::steady_clock::now();
    EXPECT_EXIT(callWithinOwnLoop(), testing::ExitedWithCode(7), "");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, ui_thread::patience);
}

// It has not got the thread, which the end of this process waits for.
TEST(UIThreadTest, IsNotMissedByAForkedProcess) {
    ui_thread::instance().invoke([] {});
    auto const begin = std::chrono::steady_clock::now();
    auto const child = fork();
    if (child == 0) {
        std::exit(7);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 7) << status;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 900ms);
}
