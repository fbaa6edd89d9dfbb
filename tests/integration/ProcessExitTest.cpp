// The end of the engine's process, whatever the views are doing: it ends at once with its own exit code, and
// no process of a browser stays behind.

#include <dlfcn.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <cstdlib>
#include <functional>
#include <iostream>
#include <thread>

#include "support/EngineTest.h"
#include "support/Processes.h"
#include "support/TestPages.h"
#include "zarvik/host/ProcessTree.h"

namespace {

using namespace std::chrono_literals;
using zarvik::host::Engine;
using zarvik::host::View;

constexpr int exitCode = 7;

/// Everything but the processes before it lives in the process that ends.
class ProcessExitTest : public testing::Test {
  protected:
    ProcessExitTest() {
        // The whole test runs again in the process that is to end, which would not know its threads
        // otherwise.
        GTEST_FLAG_SET(death_test_style, "threadsafe");
        // What that process leaves behind becomes a child of this one.
        prctl(PR_SET_CHILD_SUBREAPER, 1);
    }

    void expectNothingStays() const {
        std::size_t left = 0;
        EXPECT_TRUE(waitUntil([&] {
            auto now = browserProcesses();
            std::erase_if(now, [this](pid_t process) { return before.contains(process); });
            left = now.size();
            return left == 0;
        })) << left;
    }

  private:
    const zarvik::host::ProcessTimes before = zarvik::host::processTreeTimes();
};

/// Has views in all kinds of states, and lets the process end.
void endWithViews(const std::function<void()>& end) {
    alarm(60);  // a hang is a failure
    TestServer server;
    server.stalledPage("/stalled");
    server.page("/hang",
                "<script>onload = () => setTimeout(() => { fetch('/hanging'); for (;;); })</script>");
    Engine engine({});
    const auto& plugin = engine.plugin();
    View moving(engine, {200, 100});
    moving.loadHtml(animatedPage);
    View loading(engine, {200, 100});
    loading.loadUrl(server.url("/stalled"));
    View hanging(engine, {200, 100});
    hanging.loadUrl(server.url("/hang"));
    View asked(engine, {200, 100});
    asked.loadHtml(patternPage);
    const bool ready = moving.waitForLoad() && moving.waitForUploads(2) && asked.waitForLoad() &&
                       server.waitForRequest("/hanging") && server.waitForRequest("/stalled");
    if (!ready) {
        std::cerr << "The views do not come\n";
        _exit(1);
    }
    for (int i = 0; i < 50; ++i) {
        plugin.WebView_executeJavaScript(asked.handle(), "1", "1");
        plugin.WebView_captureScreenshot(asked.handle(), "1");
    }
    plugin.WebView_executeJavaScript(hanging.handle(), "1", "1");
    plugin.WebView_newInNative2DMode("native", 0, 0, 100, 100);
    plugin.WebView_new("new", 100, 100, false);
    end();
}

void closeLibrary() {
    const auto path = zarvik::host::Plugin::defaultPath();
    for (int i = 0; i < 5; ++i) {
        if (void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD)) {
            dlclose(library);
            dlclose(library);
        }
    }
}

}  // namespace

TEST_F(ProcessExitTest, ByAnyExit) {
    const std::pair<const char*, void (*)()> ways[] = {
        {"exit", [] { std::exit(exitCode); }},
        {"exit of another thread", [] { std::thread([] { std::exit(exitCode); }).join(); }},
        {"without cleaning up", [] { _exit(exitCode); }},
        {"quick exit", [] { std::quick_exit(exitCode); }},
        {"after the library was closed",
         [] {
             closeLibrary();
             std::this_thread::sleep_for(200ms);
             std::exit(exitCode);
         }},
    };
    for (const auto& [name, end] : ways) {
        SCOPED_TRACE(name);
        EXPECT_EXIT(endWithViews(end), testing::ExitedWithCode(exitCode), "");
        expectNothingStays();
    }
}

TEST_F(ProcessExitTest, ByASignal) {
    EXPECT_EXIT(endWithViews([] { kill(getpid(), SIGKILL); }), testing::KilledBySignal(SIGKILL), "");
    expectNothingStays();
}

TEST_F(ProcessExitTest, RightAfterTheViewsWereDestroyed) {
    const auto end = [] {
        alarm(60);
        Engine engine({});
        {
            View view(engine, {200, 100});
            view.loadHtml(animatedPage);
            view.waitForUploads(2);
            View other(engine, {200, 100});
            other.loadHtml(animatedPage);
        }
        std::exit(exitCode);
    };
    EXPECT_EXIT(end(), testing::ExitedWithCode(exitCode), "");
    expectNothingStays();
}
