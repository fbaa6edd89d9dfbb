#include "webview/Numbers.h"

#include <gtest/gtest.h>

#include "offscreen/UwpWebView3D.h"

TEST(NumbersTest, TruncatesTowardZeroInsideTheRange) {
    EXPECT_EQ(truncate(1.999), 1);
    EXPECT_EQ(truncate(-1.999), -1);
    constexpr auto infinity = std::numeric_limits<double>::infinity();
    for (const double large : {2147483647.0, 2147483647.5, 2147483648.0, 1e300, infinity}) {
        EXPECT_EQ(truncate(large), 2147483647) << large;
    }
    for (const double small : {-2147483648.0, -2147483648.5, -2147483649.0, -1e300, -infinity}) {
        EXPECT_EQ(truncate(small), -2147483647 - 1) << small;
    }
    EXPECT_EQ(truncate(std::numeric_limits<double>::quiet_NaN()), 0);
}

TEST(NumbersTest, BitmapCaptureHasItsBounds) {
    constexpr foundation::Rect wide{0, 0, 10000, 10000};
    EXPECT_TRUE(fitsBitmapCapture(4096, 4096, wide));
    EXPECT_FALSE(fitsBitmapCapture(4097, 1, wide));
    EXPECT_FALSE(fitsBitmapCapture(1, 4097, wide));
    // The window's size counts in whole pixels, its place not at all.
    constexpr foundation::Rect window{500, 500, 1280.9F, 720.9F};
    EXPECT_TRUE(fitsBitmapCapture(1280, 720, window));
    EXPECT_FALSE(fitsBitmapCapture(1281, 720, window));
    EXPECT_FALSE(fitsBitmapCapture(1280, 721, window));
    // Before the window's bounds are known nothing fits.
    EXPECT_FALSE(fitsBitmapCapture(1, 1, {}));
    constexpr auto infinity = std::numeric_limits<float>::infinity();
    EXPECT_TRUE(fitsBitmapCapture(4096, 4096, {0, 0, infinity, infinity}));
    constexpr auto notANumber = std::numeric_limits<float>::quiet_NaN();
    EXPECT_FALSE(fitsBitmapCapture(1, 1, {0, 0, notANumber, notANumber}));
}
