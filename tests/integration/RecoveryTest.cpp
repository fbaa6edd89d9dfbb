// Pages whose process dies, or does nothing but run: the engine hears of it, calls are answered, and views go
// on.

#include <sys/resource.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <list>
#include <thread>

#include "support/EngineTest.h"
#include "support/Processes.h"
#include "support/TestPages.h"
#include "zarvik/host/ProcessTree.h"

namespace {

using namespace std::chrono_literals;

class RecoveryTest : public EngineTest {
  protected:
    /// The processes of pages that have begun since the test did.
    std::vector<pid_t> newPageProcesses() const {
        auto found = pageProcesses();
        std::erase_if(found, [this](pid_t process) { return before.contains(process); });
        return found;
    }

    void killPage() {
        // One that was still coming up for the view of an earlier test has to go first.
        ASSERT_TRUE(waitUntil([this] { return newPageProcesses().size() == 1; }));
        ASSERT_EQ(kill(newPageProcesses().front(), SIGKILL), 0);
    }

    bool waitForFinish(std::size_t from) {
        return view.waitForMessage("HandleLoadFinished", from).has_value();
    }

    const zarvik::host::ProcessTimes before = zarvik::host::processTreeTimes();
    View view{engine, {64, 48}};
};

const std::string noAnswer = "Error: An unexpected error occurred while executing the script";

}  // namespace

TEST_F(RecoveryTest, APageWhoseProcessDiesIsLoadedAgainOnce) {
    server.page("/page", patternPage);
    load(view, server.url("/page"));
    const auto from = recorder().position();
    plugin().WebView_executeJavaScript(view.handle(), "for (;;);", "1");
    plugin().WebView_executeJavaScript(view.handle(), "1", "2");
    killPage();
    ASSERT_TRUE(waitForFinish(from));
    const std::string lost = "The process of the page has ended unexpectedly. The page is loaded again.";
    auto messages = messagesSince(from, view);
    ASSERT_GT(messages.size(), 2U);
    EXPECT_TRUE(messages[0].starts_with("HandleJavaScriptResult 1," + noAnswer)) << messages[0];
    EXPECT_TRUE(messages[1].starts_with("HandleJavaScriptResult 2," + noAnswer)) << messages[1];
    messages.erase(messages.begin(), messages.begin() + 2);
    EXPECT_EQ(messages, (std::vector<std::string>{"HandleLoadFailed " + lost, urlChanged(server.url("/page")),
                                                  "HandleLoadStarted", "HandleLoadProgressUpdate 0.33",
                                                  "HandleLoadProgressUpdate 0.66", "HandleLoadFinished"}));
    EXPECT_TRUE(waitForError(lost, from));
    EXPECT_EQ(view.evaluate("1 + 1"), "2");
    EXPECT_TRUE(showsPattern(view, 64, 48));

    // Not for ever: a page that kills its process each time would keep the machine busy.
    const auto again = recorder().position();
    killPage();
    EXPECT_TRUE(waitForError("again within a minute", again));
    EXPECT_TRUE(view.evaluate("1").value_or("").starts_with(noAnswer));
    EXPECT_EQ(
        messagesSince(again, view).front(),
        "HandleLoadFailed The process of the page has ended unexpectedly, again within a minute. The page "
        "isn't loaded again.");
    load(view, server.url("/page"));
    EXPECT_EQ(view.evaluate("1 + 1"), "2");
}

TEST_F(RecoveryTest, APageThatDiesIsSeenUntilItIsThereAgain) {
    loadHtml(view, colourPage(255, 0, 0));
    ASSERT_TRUE(showsColour(view, 255, 0, 0));
    // More pictures than the memory for them, so that each of it was used before.
    for (const int blue : {50, 100, 150, 200, 250}) {
        view.evaluate("document.body.style.background = 'rgb(0, 0, " + std::to_string(blue) + ")'");
        ASSERT_TRUE(showsColour(view, 0, 0, blue));
    }
    killPage();
    EXPECT_TRUE(waitForPixels(view, [](const Image& image) {
        for (const int blue : {50, 100, 150, 200}) {
            EXPECT_FALSE(isFilled(image, 0, 0, blue)) << blue;
        }
        return isFilled(image, 255, 0, 0);
    }));
}

TEST_F(RecoveryTest, APageThatTakesTooMuchMemoryIsLoadedAgain) {
    server.page("/page", "<title>page</title>");
    load(view, server.url("/page"));
    const auto from = recorder().position();
    // Without a moment for anything else in its process.
    plugin().WebView_executeJavaScript(
        view.handle(), "for (const all = [];;) { all.push(new Uint8Array(1 << 26).fill(1)); }", "1");
    ASSERT_TRUE(waitForFinish(from));
    EXPECT_TRUE(waitForError("The process of the page has ended unexpectedly.", from));
    EXPECT_EQ(view.evaluate("document.title"), "page");
}

TEST_F(RecoveryTest, TheKernelEndsPagesBeforeTheEngineWhenMemoryRunsOut) {
    const auto inclination = [](pid_t process) {
        int score = -1;
        std::ifstream("/proc/" + std::to_string(process) + "/oom_score") >> score;
        return score;
    };
    loadHtml(view, "<title>page</title>");
    const auto pages = newPageProcesses();
    ASSERT_EQ(pages.size(), 1U);
    EXPECT_GT(inclination(pages.front()), inclination(getpid()) + 300);
}

TEST_F(RecoveryTest, PagesYieldWhileTheyCouldTakeAllProcessors) {
    const auto niceness = [](int thread) { return getpriority(PRIO_PROCESS, static_cast<id_t>(thread)); };
    const auto haveNiceness = [&](int expected) {
        return std::ranges::all_of(newPageProcesses(),
                                   [&](pid_t process) { return niceness(process) == expected; });
    };
    const auto processors = std::thread::hardware_concurrency();
    const int own = niceness(0);
    loadHtml(view, "<title>first</title>");
    {
        std::list<View> others;
        while (others.size() + 1 < processors) {
            loadHtml(others.emplace_back(engine, zarvik::host::Size{64, 48}), "<title>other</title>");
        }
        EXPECT_EQ(newPageProcesses().size(), others.size() + 1);
        EXPECT_TRUE(waitUntil([&] { return haveNiceness(own + 5); }));
    }
    // One alone does not, where there are more processors, but its workers do.
    ASSERT_TRUE(waitUntil([this] { return newPageProcesses().size() == 1; }));
    const auto from = recorder().position();
    killPage();
    ASSERT_TRUE(waitForFinish(from));
    EXPECT_TRUE(haveNiceness(processors > 1 ? own : own + 5));
    view.evaluate("new Worker(URL.createObjectURL(new Blob(['for (;;);'])))");
    const auto page = newPageProcesses().front();
    EXPECT_TRUE(waitUntil([&] {
        const std::filesystem::directory_iterator threads("/proc/" + std::to_string(page) + "/task");
        return std::ranges::any_of(threads, [&](const auto& thread) {
            return niceness(std::stoi(thread.path().filename())) == own + 5;
        });
    }));
}

TEST_F(RecoveryTest, APageInAnEndlessLoopHoldsNobodyUp) {
    server.page("/page", "<title>page</title>");
    {
        View looping(engine, {64, 48});
        load(looping, server.url("/page"));
        plugin().WebView_executeJavaScript(looping.handle(), "for (;;);", "1");
        load(view, server.url("/page"));
        EXPECT_EQ(view.evaluate("document.title"), "page");
        for (int i = 0; i < 100; ++i) {
            plugin().WebView_click(looping.handle(), 10, 10);
            plugin().WebView_resize(looping.handle(), 64 + i, 48);
            plugin().WebView_executeJavaScript(looping.handle(), "2", "2");
        }
        EXPECT_EQ(view.evaluate("document.title"), "page");
    }
    // Its process ends with the view.
    EXPECT_TRUE(waitUntil([this] { return newPageProcesses().size() == 1; })) << newPageProcesses().size();
    EXPECT_EQ(view.evaluate("document.title"), "page");
}
