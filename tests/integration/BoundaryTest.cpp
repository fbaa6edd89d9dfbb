// The boundary itself: callbacks that are missing, log lines, texts of any kind.

#include <regex>
#include <thread>

#include "support/EngineTest.h"
#include "support/TestPages.h"

namespace {

using namespace std::chrono_literals;

class BoundaryTest : public EngineTest {};

}  // namespace

TEST_F(BoundaryTest, TheVersionLineCarriesTheMonotonicMilliseconds) {
    const auto before = std::chrono::steady_clock::now().time_since_epoch() / 1ms;
    plugin().WebView_logVersionInfo();
    const auto after = std::chrono::steady_clock::now().time_since_epoch() / 1ms;
    const auto line =
        recorder().waitFor([](const Record& record) { return record.kind == Record::Kind::info; });
    ASSERT_TRUE(line);
    std::smatch parts;
    ASSERT_TRUE(
        std::regex_match(line->payload, parts, std::regex("(\\d+) Using Zarvik Orvella for UWP v4\\.3\\.3")));
    EXPECT_GE(std::stoll(parts[1]), before);
    EXPECT_LE(std::stoll(parts[1]), after);
}

TEST_F(BoundaryTest, WithoutASendMessageFunctionEachMessageIsOneLogLine) {
    View view(engine, {10, 10});
    plugin().WebView_setSendMessageFunction(nullptr);
    plugin().WebView_loadHtml(view.handle(), "<p>text");
    // URL changed, started, two of progress, finished.
    EXPECT_TRUE(recorder().waitUntil([](const auto& records) {
        return std::count_if(records.begin(), records.end(), [](const Record& record) {
                   return record.payload.ends_with(
                       "Can't send message, because the _unitySendMessage function is NULL");
               }) >= 5;
    }));
    EXPECT_TRUE(messagesSince(0, view).empty());

    // Without log functions as well, all is silent, and nothing fails.
    plugin().WebView_setLogFunctions(nullptr, nullptr, nullptr);
    plugin().WebView_setDataResultCallback(nullptr);
    const auto from = recorder().position();
    plugin().WebView_loadHtml(view.handle(), "<p>text");
    plugin().WebView_captureScreenshot(view.handle(), "nobody");
    plugin().WebView_logVersionInfo();
    std::this_thread::sleep_for(500ms);
    EXPECT_TRUE(recorder().since(from).empty());
}

TEST_F(BoundaryTest, TextsOfAnyKindPassUnchanged) {
    View view(engine, {10, 10});
    server.page("/ünï/日本", "<p>path");
    const auto from = recorder().position();
    view.loadUrl(server.url("/ünï/日本"));
    EXPECT_TRUE(view.waitForLoad());
    EXPECT_EQ(messagesSince(from, view).at(0), urlChanged(server.url("/%C3%BCn%C3%AF/%E6%97%A5%E6%9C%AC")));
    view.loadUrl("bad \xff\xfe utf-8");
    EXPECT_EQ(view.waitForLoad().outcome, LoadResult::Outcome::failed);
    loadHtml(view, std::string(2'000'000, 'x'));
}

TEST_F(BoundaryTest, UnloadIsHarmlessAndTheLibraryGoesOn) {
    plugin().UnityPluginUnload();
    plugin().UnityPluginUnload();
    View view(engine, {30, 20});
    loadHtml(view, colourPage(1, 2, 3));
    EXPECT_TRUE(showsColour(view, 1, 2, 3));
}

TEST_F(BoundaryTest, WithoutAnEngineDeviceTheViewSaysSoAndLoadsItsPage) {
    plugin().UnityPluginLoad(nullptr);
    View view(engine, {30, 20});
    loadHtml(view, "<p>page");
    EXPECT_TRUE(waitForError("The engine's Direct3D 11 device is not available"));
}
