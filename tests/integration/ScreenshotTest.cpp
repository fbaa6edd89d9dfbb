// Screenshots and raw texture data.

#include <png.h>

#include "support/EngineTest.h"
#include "support/TestPages.h"

namespace {

class ScreenshotTest : public EngineTest {
  protected:
    std::optional<Record> answer(const std::string& id, std::size_t from = 0) {
        return recorder().waitFor(
            [&](const Record& record) { return record.kind == Record::Kind::data && record.method == id; },
            from);
    }

    static Image decodePng(const std::vector<std::uint8_t>& bytes) {
        png_image header{};
        header.version = PNG_IMAGE_VERSION;
        if (!png_image_begin_read_from_memory(&header, bytes.data(), bytes.size())) {
            ADD_FAILURE() << header.message;
            return {};
        }
        header.format = PNG_FORMAT_BGRA;
        Image image(static_cast<int>(header.width), static_cast<int>(header.height));
        EXPECT_TRUE(png_image_finish_read(&header, nullptr, image.pixels.data(), 0, nullptr))
            << header.message;
        return image;
    }
};

}  // namespace

TEST_F(ScreenshotTest, AScreenshotAndTheRawDataHaveThePagesPixels) {
    View view(engine, {311, 207});
    loadHtml(view, patternPage);
    ASSERT_TRUE(showsPattern(view, 311, 207));
    const auto expected = testPattern(311, 207);
    plugin().WebView_captureScreenshot(view.handle(), "shot");
    plugin().WebView_getRawTextureData(view.handle(), "raw");
    const auto shot = answer("shot");
    const auto raw = answer("raw");
    ASSERT_TRUE(shot && raw);
    EXPECT_EQ(shot->target, view.target());
    EXPECT_EQ(decodePng(shot->bytes), expected);
    EXPECT_EQ(raw->bytes, upsideDown(expected).pixels);

    // With a zoom factor both have the scaled size.
    plugin().WebView_zoomOut(view.handle());
    ASSERT_TRUE(showsPattern(view, 342, 227));
    plugin().WebView_captureScreenshot(view.handle(), "zoomed");
    const auto zoomedShot = answer("zoomed");
    ASSERT_TRUE(zoomedShot);
    EXPECT_EQ(decodePng(zoomedShot->bytes), testPattern(342, 227));
}

TEST_F(ScreenshotTest, RequestsAtOnceAreAnsweredEachWithItsId) {
    View view(engine, {50, 40});
    loadHtml(view, colourPage(7, 8, 9));
    ASSERT_TRUE(showsColour(view, 7, 8, 9));
    for (int i = 0; i < 20; ++i) {
        plugin().WebView_captureScreenshot(view.handle(), ("shot" + std::to_string(i)).c_str());
        plugin().WebView_getRawTextureData(view.handle(), ("raw" + std::to_string(i)).c_str());
    }
    for (int i = 0; i < 20; ++i) {
        const auto shot = answer("shot" + std::to_string(i));
        const auto raw = answer("raw" + std::to_string(i));
        ASSERT_TRUE(shot && raw) << i;
        EXPECT_TRUE(isFilled(decodePng(shot->bytes), 7, 8, 9));
        EXPECT_EQ(raw->bytes.size(), 50U * 40 * 4);
    }
}

TEST_F(ScreenshotTest, ARequestHasTheSizeOfItsTime) {
    View view(engine, {50, 40});
    loadHtml(view, patternPage);
    for (int i = 0; i < 20; ++i) {
        const auto id = std::to_string(i);
        plugin().WebView_getRawTextureData(view.handle(), ("before" + id).c_str());
        plugin().WebView_resize(view.handle(), 40 + i, 31);
        plugin().WebView_getRawTextureData(view.handle(), ("after" + id).c_str());
        plugin().WebView_resize(view.handle(), 50, 40);
        const auto before = answer("before" + id);
        const auto after = answer("after" + id);
        ASSERT_TRUE(before && after) << i;
        EXPECT_EQ(before->bytes.size(), 50U * 40 * 4);
        EXPECT_EQ(after->bytes.size(), (40U + static_cast<unsigned>(i)) * 31 * 4);
    }
}

TEST_F(ScreenshotTest, AViewWithoutASizeSaysSo) {
    View view(engine, {0, 0});
    const auto from = recorder().position();
    plugin().WebView_captureScreenshot(view.handle(), "none");
    plugin().WebView_getRawTextureData(view.handle(), "none");
    EXPECT_TRUE(waitForError("Can't capture a screenshot, because the web view has no size.", from));
    EXPECT_TRUE(waitForError("Can't get the raw texture data, because the web view has no size.", from));
    EXPECT_FALSE(recorder().waitFor([](const Record& record) { return record.kind == Record::Kind::data; },
                                    from, std::chrono::milliseconds(200)));
}

TEST_F(ScreenshotTest, APictureTooLargeToBeDeliveredIsNotEvenBegun) {
    View view(engine, {2'000'000'000, 300});
    const auto from = recorder().position();
    plugin().WebView_captureScreenshot(view.handle(), "large");
    plugin().WebView_getRawTextureData(view.handle(), "large");
    EXPECT_TRUE(recorder().waitUntil([from](const auto& records) {
        return std::count_if(records.begin() + static_cast<std::ptrdiff_t>(from), records.end(),
                             [](const Record& record) {
                                 return record.payload.ends_with(
                                     "Can't deliver a data result, because it is larger than 2 GB.");
                             }) == 2;
    }));
}
