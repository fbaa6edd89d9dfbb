// The player's scene by itself: where a ray meets a page, and where a page appears in the window.

#include <gtest/gtest.h>

#include <cmath>

#include "Scenery.h"

namespace {

using zarvik::host::Size;
using zarvik::player::Camera;
using zarvik::player::Point;
using zarvik::player::Ray;
using zarvik::player::Scenery;
using zarvik::player::Shape;
using zarvik::player::Stage;

constexpr Size window{1000, 700};

Scenery sceneryOf(const std::vector<Size>& pages) {
    Scenery scenery;
    scenery.stage = std::make_shared<Stage>(pages);
    scenery.window = window;
    scenery.camera = scenery.stage->camera(window, Scenery::toolbarHeight);
    for (const Size size : pages) {
        scenery.pages.push_back({.view = nullptr, .size = size});
    }
    scenery.toolbar = {.view = nullptr, .size = {window.width, Scenery::toolbarHeight}};
    return scenery;
}

}  // namespace

TEST(ShapeTest, EachSideOfABoxShowsThePageTheRightWayRound) {
    const auto box = Shape::make(Shape::Kind::box, {1600, 900});
    const double offset = box.width / 4;  // to the viewer's right
    for (const Ray& ray : {Ray{{offset, 0.5, 10}, {0, 0, -1}}, Ray{{10, 0.5, -offset}, {-1, 0, 0}},
                           Ray{{-offset, 0.5, -10}, {0, 0, 1}}, Ray{{-10, 0.5, offset}, {1, 0, 0}}}) {
        const auto hit = box.firstHit(ray);
        ASSERT_TRUE(hit);
        EXPECT_TRUE(hit->front);
        EXPECT_NEAR(hit->page.x, 0.75, 1e-9);
    }
    EXPECT_EQ(box.placesOf({0.5, 0.5}).size(), 4U);
}

TEST(CameraTest, StaysAboveTheFloorAndWithinItsLimits) {
    const Camera low = Camera{.pitch = -80, .distance = 5, .target = {0, 0.5, 0}}.limited();
    EXPECT_GT(low.position().y, 0.04);
    const Camera far = Camera{.yaw = 725, .pitch = 89.99, .distance = 1e9}.limited();
    EXPECT_EQ(far, (Camera{.yaw = 5, .pitch = Camera::steepest, .distance = Camera::farthest}));
}

TEST(SceneryTest, EveryPageIsInTheWindowAndEachOfItsVisiblePixelsIsFoundAgain) {
    for (const auto& pages : {std::vector<Size>{{1280, 720}}, std::vector<Size>{{1280, 720}, {300, 900}},
                              std::vector<Size>{{1280, 720}, {1024, 768}, {800, 600}, {1920, 300}}}) {
        const auto scenery = sceneryOf(pages);
        for (std::size_t i = 0; i < pages.size(); ++i) {
            const auto [width, height] = pages[i];
            for (const Point pixel :
                 {Point{0, 0}, Point(width - 1, 0), Point(0, height - 1), Point(width - 1, height - 1),
                  Point(std::floor(width * 0.5), std::floor(height * 0.3))}) {
                const auto point = scenery.windowPointOf(i, pixel);
                ASSERT_TRUE(point) << pages.size() << " pages, page " << i << ", " << pixel.x << " "
                                   << pixel.y;
                EXPECT_GE(point->y, Scenery::toolbarHeight);
                const auto target = scenery.under(*point);
                ASSERT_TRUE(target);
                EXPECT_EQ(target->surface, i);
                EXPECT_EQ(target->x, pixel.x);
                EXPECT_EQ(target->y, pixel.y);
            }
        }
    }
}

TEST(SceneryTest, TheToolbarCoversPagesAndThoseCoverEachOther) {
    auto scenery = sceneryOf({{1280, 720}, {1280, 720}});
    const auto onToolbar = scenery.under({30, Scenery::toolbarHeight - 1});
    ASSERT_TRUE(onToolbar);
    EXPECT_FALSE(onToolbar->surface);
    EXPECT_EQ(onToolbar->y, Scenery::toolbarHeight - 1);
    EXPECT_FALSE(scenery.under({window.width / 2.0, Scenery::toolbarHeight + 2.0})) << "the sky";
    EXPECT_FALSE(scenery.under({-1, 300})) << "outside the window";

    // Close up, the upper edge of the page is beyond the toolbar.
    scenery.camera.distance = 1;
    EXPECT_FALSE(scenery.windowPointOf(0, {640, 0}));
    // From behind only backs are seen.
    scenery.camera.distance = 6;
    scenery.camera.yaw = 180;
    EXPECT_FALSE(scenery.windowPointOf(0, {640, 360}));
    // From the side the nearer page hides the other.
    scenery.camera = {.yaw = 100, .pitch = 2, .distance = 6, .target = {0, 0.6, 0}};
    const auto nearer = scenery.camera.project(scenery.stage->surfaces()[1].placesOf({0.5, 0.5})[0], window);
    ASSERT_TRUE(nearer);
    EXPECT_FALSE(scenery.under(*nearer)) << "the back of the nearer one";
}
