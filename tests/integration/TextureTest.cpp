// The engine's texture: who owns it, what is announced, and what a device that fails does to the view.

#include <d3d11.h>

#include <random>
#include <thread>

#include "support/EngineTest.h"
#include "support/TestPages.h"

namespace {

using namespace std::chrono_literals;

constexpr HRESULT deviceRemoved = static_cast<HRESULT>(0x887A0005u);

class TextureTest : public EngineTest {
  protected:
    void TearDown() override { engine.device().setFaults({}); }

    /// Waits until everything that the engine was given has been released.
    bool everythingIsReleased() {
        return waitUntil([this] {
            engine.takeTurn();
            return engine.device().liveObjects() == zarvik::host::GLDevice::LiveObjects{};
        });
    }
};

}  // namespace

TEST_F(TextureTest, NothingLeaksAndNothingIsFreedTwiceOverResizeStorms) {
    {
        View view(engine, {100, 100});
        loadHtml(view, animatedPage);
        ASSERT_TRUE(view.waitForUploads(1));
        std::mt19937 random(20);
        std::uniform_int_distribution<int> length(1, 500);
        for (int i = 0; i < 1000; ++i) {
            plugin().WebView_resize(view.handle(), length(random), length(random));
            if (i % 20 == 0) {
                std::this_thread::sleep_for(20ms);  // so that some of the textures are announced
            }
        }
        plugin().WebView_resize(view.handle(), 123, 45);
        EXPECT_TRUE(
            waitForPixels(view, [](const Image& image) { return image.width == 123 && image.height == 45; }));
        EXPECT_GT(view.announcements(), 2U);
        engine.takeTurn();
        // The current texture and its view, and at most one that is being replaced.
        EXPECT_LE(engine.device().liveObjects().textures, 2U);
    }
    EXPECT_TRUE(everythingIsReleased());
    EXPECT_EQ(errorsSince(0), std::vector<std::string>{});
}

TEST_F(TextureTest, TheTextureMayBeDestroyedBeforeOrAfterTheView) {
    // Without the helper that does it in the right order: the engine is free to choose.
    for (const bool textureFirst : {true, false}) {
        const auto from = recorder().position();
        auto* const view = plugin().WebView_new("bare", 64, 64, false);
        const auto key = plugin().WebView_depositPointer(view);
        const auto render = plugin().WebView_getRenderFunction();
        plugin().WebView_loadHtml(view, colourPage(9, 9, 9).c_str());
        std::optional<Record> announcement;
        for (int i = 0; i < 500 && !announcement; ++i) {
            engine.renderThread().run([&] { render(key); });
            announcement = recorder().waitFor(
                [](const Record& record) {
                    return record.target == "bare" && record.method == "HandleTextureChanged";
                },
                from, 20ms);
        }
        ASSERT_TRUE(announcement);
        EXPECT_EQ(announcement->role, Record::ThreadRole::render);
        auto* const texture = reinterpret_cast<void*>(std::stoull(announcement->payload));
        plugin().WebView_removePointer(view);
        if (textureFirst) {
            plugin().WebView_destroyTexture(texture);
            plugin().WebView_destroy(view);
        } else {
            plugin().WebView_destroy(view);
            std::this_thread::sleep_for(300ms);
            plugin().WebView_destroyTexture(texture);
        }
        EXPECT_TRUE(everythingIsReleased()) << (textureFirst ? "texture first" : "view first");
    }
}

TEST_F(TextureTest, ATextureThatWasNeverAnnouncedGoesWithItsView) {
    auto* const view = plugin().WebView_new("unrendered", 64, 64, false);
    plugin().WebView_loadHtml(view, animatedPage.c_str());
    plugin().WebView_resize(view, 80, 80);
    EXPECT_TRUE(waitUntil([this] { return engine.device().liveObjects().textures == 1; }));
    plugin().WebView_destroy(view);
    EXPECT_TRUE(everythingIsReleased());
}

TEST_F(TextureTest, AFailingMapDropsTheFrameAndTheNextOneIsTried) {
    View view(engine, {64, 64});
    std::atomic<int> failures = 0;
    engine.device().setFaults({.map = [&] { return ++failures <= 3 ? deviceRemoved : S_OK; }});
    loadHtml(view, animatedPage);
    EXPECT_TRUE(view.waitForUploads(5));
    const auto errors = errorsSince(0);
    EXPECT_EQ(errors,
              std::vector<std::string>(
                  3, "[UwpWebView::render] ID3D11DeviceContext::Map failed with result: -2005270523"));
}

TEST_F(TextureTest, ACreationThatFailsKeepsTheOldTexture) {
    View view(engine, {64, 64});
    loadHtml(view, colourPage(1, 2, 3));
    ASSERT_TRUE(showsColour(view, 1, 2, 3));
    auto from = recorder().position();
    engine.device().setFaults({.createTexture2D = [](const auto&) { return deviceRemoved; }});
    plugin().WebView_resize(view.handle(), 100, 100);
    EXPECT_TRUE(waitForError("Texture creation failed with code: 2289696773", from));
    from = recorder().position();
    engine.device().setFaults({.createShaderResourceView = [] { return deviceRemoved; }});
    plugin().WebView_resize(view.handle(), 90, 90);
    EXPECT_TRUE(waitForError("Shader resource creation failed with code: 2289696773", from));
    EXPECT_EQ(view.readPixels().width, 64);
    engine.device().setFaults({});
    plugin().WebView_resize(view.handle(), 80, 70);
    EXPECT_TRUE(waitForPixels(view, [](const Image& image) {
        return image.width == 80 && image.height == 70 && isFilled(image, 1, 2, 3);
    }));
}

TEST_F(TextureTest, AViewIsAnnouncedOnceAndOnlyWithAFrame) {
    View view(engine, {64, 64});
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(view.announcements(), 0U);
    loadHtml(view, animatedPage);
    ASSERT_TRUE(view.waitForUploads(10));
    EXPECT_EQ(view.announcements(), 1U);
}

TEST_F(TextureTest, ForeignHandlesAreReportedNotFollowed) {
    const auto from = recorder().position();
    plugin().WebView_destroyTexture(nullptr);
    EXPECT_TRUE(waitForError("[UwpWebView::destroyTexture] QueryInterface failed with error code: ", from));
    const auto render = plugin().WebView_getRenderFunction();
    int something = 0;
    const auto key = plugin().WebView_depositPointer(&something);
    const auto second = plugin().WebView_depositPointer(&something);
    EXPECT_NE(key, second);
    render(key);
    render(-1);
    plugin().WebView_removePointer(&something);
    plugin().WebView_removePointer(&something);
    plugin().WebView_removePointer(&something);
    render(second);
}
