// The page's pixels in the engine's texture, and how often they get there.

#include <future>
#include <thread>

#include "support/EngineTest.h"
#include "support/TestPages.h"

namespace {

using namespace std::chrono_literals;
using zarvik::host::Size;

/// Both ways to capture: the bitmap path and the stream path.
class CaptureTest : public EngineTest, public testing::WithParamInterface<bool> {
  protected:
    bool streamPath() const { return GetParam(); }
};

std::string pathName(const testing::TestParamInfo<bool>& info) {
    return info.param ? "StreamPath" : "BitmapPath";
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Paths, CaptureTest, testing::Bool(), pathName);

TEST_P(CaptureTest, PixelsAreExactInOddSizesAndPitches) {
    struct {
        Size size;
        std::uint32_t (*rowPitch)(std::uint32_t width) = nullptr;
    } const cases[] = {
        {{320, 240}, [](std::uint32_t width) { return width * 4; }},
        {{333, 217}, [](std::uint32_t width) { return (width * 4 + 255) / 256 * 256; }},
        {{1, 1}, [](std::uint32_t width) { return width * 4 + 4; }},
        {{257, 3}, [](std::uint32_t width) { return width; }},  // too narrow a pitch must not be believed
        {{641, 359}, [](std::uint32_t) { return 0U; }},
    };
    for (const auto& [size, rowPitch] : cases) {
        engine.device().setFaults({.rowPitch = rowPitch});
        View view(engine, size, streamPath());
        loadHtml(view, patternPage);
        EXPECT_TRUE(showsPattern(view, size.width, size.height))
            << size.width << "x" << size.height << ", pitch " << rowPitch(size.width);
    }
}

TEST_P(CaptureTest, ResizeAndZoomMakeANewTextureWithExactPixels) {
    View view(engine, {300, 200}, streamPath());
    loadHtml(view, patternPage);
    ASSERT_TRUE(showsPattern(view, 300, 200));
    plugin().WebView_resize(view.handle(), 411, 123);
    EXPECT_TRUE(showsPattern(view, 411, 123));
    plugin().WebView_zoomOut(view.handle());  // 1.1
    EXPECT_TRUE(showsPattern(view, 452, 135));
    plugin().WebView_zoomIn(view.handle());  // back to 1
    plugin().WebView_zoomIn(view.handle());  // 0.9
    EXPECT_TRUE(showsPattern(view, 369, 110));
    for (int i = 0; i < 20; ++i) {
        plugin().WebView_zoomIn(view.handle());  // stops at 0.1
    }
    EXPECT_TRUE(showsPattern(view, 41, 12));
}

TEST_P(CaptureTest, AStillPageIsUploadedNoMoreOnceItHasSettled) {
    View view(engine, {320, 240}, streamPath());
    loadHtml(view, patternPage);
    ASSERT_TRUE(showsPattern(view, 320, 240));
    std::this_thread::sleep_for(300ms);
    const auto settled = view.uploads();
    std::this_thread::sleep_for(1s);
    EXPECT_EQ(view.uploads(), settled);

    // A texture made later gets the picture although the page did not change.
    plugin().WebView_resize(view.handle(), 320, 240);
    ASSERT_TRUE(view.waitForUploads(settled + 1));
    EXPECT_TRUE(showsPattern(view, 320, 240));
}

TEST_P(CaptureTest, AnAnimatedPageKeepsComingAndStopsOnRequest) {
    View view(engine, {320, 240}, streamPath());
    loadHtml(view, animatedPage);
    EXPECT_TRUE(view.waitForUploads(30));
    plugin().WebView_setRenderingEnabled(view.handle(), false);
    std::this_thread::sleep_for(500ms);
    const auto stopped = view.uploads();
    std::this_thread::sleep_for(500ms);
    EXPECT_EQ(view.uploads(), stopped);
    plugin().WebView_setRenderingEnabled(view.handle(), true);
    EXPECT_TRUE(view.waitForUploads(stopped + 10));
    // Switching while a capture is under way may start a second chain of captures; both must end.
    for (int i = 0; i < 10; ++i) {
        plugin().WebView_setRenderingEnabled(view.handle(), i % 2 == 1);
    }
    EXPECT_TRUE(view.waitForUploads(view.uploads() + 10));
}

TEST_P(CaptureTest, AnEngineThatPausesSeesTheNewestPicture) {
    View view(engine, {60, 40}, streamPath());
    loadHtml(view, "<body style='background: red'>");
    ASSERT_TRUE(showsColour(view, 255, 0, 0));

    std::vector<Image> seen;
    engine.setDrawing([&, uploads = view.uploads()] {
        if (view.uploads() != uploads) {
            seen.push_back(view.readPixels());
        }
        return false;
    });
    std::promise<void> pausing;
    std::promise<void> pauseEnds;
    std::thread pause([&] {
        engine.renderThread().run([&] {
            pausing.set_value();
            pauseEnds.get_future().wait();
        });
    });
    pausing.get_future().wait();
    for (const std::string colour : {"lime", "white", "blue"}) {
        view.evaluate("document.body.style.background = '" + colour + "'");
        std::this_thread::sleep_for(300ms);  // many frames
    }
    pauseEnds.set_value();
    pause.join();
    EXPECT_TRUE(showsColour(view, 0, 0, 255));
    engine.setDrawing(nullptr);
    ASSERT_FALSE(seen.empty());
    EXPECT_TRUE(isFilled(seen.front(), 0, 0, 255));
}
