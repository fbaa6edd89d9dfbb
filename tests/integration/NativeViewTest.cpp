// Native 2D mode: the control stands in the app's window.

#include <thread>

#include "support/EngineTest.h"
#include "support/TestPages.h"

namespace {

using namespace std::chrono_literals;

class NativeViewTest : public EngineTest {
  protected:
    NativeViewTest() : view(plugin().WebView_newInNative2DMode("native", 10, 20, 200, 100)) {}
    ~NativeViewTest() override { plugin().WebView_destroy(view); }

    void loadPattern() {
        const auto from = recorder().position();
        plugin().WebView_loadHtml(view, patternPage.c_str());
        ASSERT_TRUE(recorder().waitFor(
            [](const Record& record) {
                return record.target == "native" && record.method == "HandleLoadFinished";
            },
            from));
    }

    /// Asks for pictures until one is as expected.
    bool becomes(const Image& expected) {
        for (int i = 0; i < 100; ++i) {
            const auto from = recorder().position();
            plugin().WebView_getRawTextureData(view, "picture");
            const auto answer = recorder().waitFor(
                [](const Record& record) { return record.kind == Record::Kind::data; }, from, 2s);
            if (answer && answer->bytes == upsideDown(expected).pixels) {
                return true;
            }
            std::this_thread::sleep_for(20ms);
        }
        return false;
    }

    UwpWebView* const view;
};

}  // namespace

TEST_F(NativeViewTest, IsPlacedSizedShownAndHidden) {
    loadPattern();
    EXPECT_TRUE(becomes(testPattern(200, 100)));
    plugin().WebView_setRect(view, 30, 40, 150, 90);
    EXPECT_TRUE(becomes(testPattern(150, 90)));
    plugin().WebView_resize(view, 160, 95);
    EXPECT_TRUE(becomes(testPattern(160, 95)));
    // Out of the window and back, hidden and shown again at its rectangle.
    plugin().WebView_setRect(view, -5000, 0, 140, 80);
    EXPECT_TRUE(becomes(testPattern(140, 80)));
    plugin().WebView_setVisible(view, false);
    plugin().WebView_setRect(view, 0, 0, 120, 70);
    plugin().WebView_setVisible(view, true);
    EXPECT_TRUE(becomes(testPattern(120, 70)));
    EXPECT_EQ(errorsSince(0), std::vector<std::string>{});
}

TEST_F(NativeViewTest, MixedRealityFocusTakesTheContentAwayAndBringsItBack) {
    const std::string noContent =
        "UwpWebView::handleMixedRealityAppFocusChanged is unable to restore the window content because it is "
        "null";
    loadPattern();
    plugin().WebView_handleMixedRealityAppFocusChanged(true);
    EXPECT_TRUE(waitForError(noContent));

    plugin().WebView_handleMixedRealityAppFocusChanged(false);
    // Without content there is no place for another view: it says so, and works without one.
    auto from = recorder().position();
    auto* const homeless = plugin().WebView_newInNative2DMode("homeless", 0, 0, 10, 10);
    EXPECT_TRUE(waitForError("Unable to add the WebView instance to the XAML tree.", from));
    plugin().WebView_destroy(homeless);
    EXPECT_TRUE(waitForError(
        "Couldn't remove the native webview from the XAML tree because its parent isn't a panel.", from));
    plugin().WebView_handleMixedRealityAppFocusChanged(true);
    from = recorder().position();
    plugin().WebView_resize(view, 90, 80);
    EXPECT_TRUE(becomes(testPattern(90, 80)));
    EXPECT_EQ(errorsSince(from), std::vector<std::string>{});
}
