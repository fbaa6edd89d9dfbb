#include "offscreen/PixelCopy.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

namespace {

constexpr std::uint8_t untouched = 0xEE;

/// Memory with guard bytes on both sides, to see what is written beyond its ends.
class GuardedBytes {
  public:
    explicit GuardedBytes(std::size_t size) : memory(size + 2 * guard, untouched) {}

    std::span<std::uint8_t> bytes() { return std::span(memory).subspan(guard, memory.size() - 2 * guard); }

    bool isIntact() const {
        const auto isUntouched = [](std::uint8_t byte) { return byte == untouched; };
        return std::all_of(memory.begin(), memory.begin() + guard, isUntouched) &&
               std::all_of(memory.end() - guard, memory.end(), isUntouched);
    }

  private:
    static constexpr std::size_t guard = 4096;
    std::vector<std::uint8_t> memory;
};

/// A byte of the picture, never that of the guards, nor zero.
std::uint8_t pictureByte(std::size_t position) {
    return static_cast<std::uint8_t>(1 + position % 199);
}

/// The bytes of a picture, in memory of exactly their number so that the address sanitizer sees a read
/// beyond.
std::vector<std::uint8_t> makePicture(std::size_t count) {
    std::vector<std::uint8_t> picture(count);
    for (std::size_t i = 0; i < count; ++i) {
        picture[i] = pictureByte(i);
    }
    picture.shrink_to_fit();
    return picture;
}

struct Size {
    std::int32_t width;
    std::int32_t height;
};

/// What stands at a byte of a row, by the definition of a packed picture; `missing` where it has nothing.
std::uint8_t expectedByte(const PixelView& picture, std::size_t row, std::size_t column,
                          std::uint8_t missing) {
    const auto rowBytes = static_cast<std::size_t>(std::max(picture.width, 0)) * bytesPerPixel;
    if (column >= rowBytes || row >= static_cast<std::size_t>(std::max(picture.height, 0))) {
        return missing;
    }
    const std::size_t position = row * rowBytes + column;
    return position < picture.bytes.size() ? picture.bytes[position] : missing;
}

constexpr Size pictureSizes[] = {{8, 6}, {3, 6}, {8, 2}, {3, 2},  {11, 9}, {11, 2}, {3, 9},
                                 {1, 1}, {0, 6}, {8, 0}, {-1, 6}, {8, -1}, {6, 8}};

/// The byte counts that a picture of this size might come with: right, short, long, none, in mid-row and
/// mid-pixel.
std::vector<std::size_t> byteCounts(const Size& size) {
    const auto right =
        static_cast<std::size_t>(std::max(size.width, 0)) * std::max(size.height, 0) * bytesPerPixel;
    const std::size_t mapped = 8 * bytesPerPixel * 6;
    return {0, 1, right / 2, right - std::min<std::size_t>(right, 1), right, right + 1, right * 2, mapped};
}

/// Calls `check` with pictures of all sizes and byte counts.
void forEachPicture(const std::function<void(const PixelView&)>& check) {
    for (const Size& size : pictureSizes) {
        for (const std::size_t count : byteCounts(size)) {
            SCOPED_TRACE(testing::Message()
                         << size.width << "x" << size.height << " of " << count << " bytes");
            const auto picture = makePicture(count);
            check({size.width, size.height, picture});
        }
    }
}

}  // namespace

TEST(PixelCopyTest, EveryPictureFitsEveryTexture) {
    constexpr std::uint32_t width = 8;
    constexpr std::uint32_t height = 6;
    for (const std::uint32_t pitch : {32U, 33U, 37U, 64U, 256U, 4096U}) {
        forEachPicture([&](const PixelView& view) {
            // The last row of a mapped texture may lack its padding.
            GuardedBytes texture(std::size_t{height - 1} * pitch + width * bytesPerPixel);
            copyToTexture(view, texture.bytes().data(), pitch, width, height);
            ASSERT_TRUE(texture.isIntact()) << "pitch " << pitch;
            const auto written = texture.bytes();
            for (std::size_t i = 0; i < written.size(); ++i) {
                const std::size_t column = i % pitch;
                const auto expected = column < width * bytesPerPixel
                                          ? expectedByte(view, i / pitch, column, untouched)
                                          : untouched;
                ASSERT_EQ(written[i], expected) << "pitch " << pitch << ", at " << i;
            }
        });
    }
}

// A picture of this size goes past the caches, in blocks that begin and end anywhere in its rows.
TEST(PixelCopyTest, LargePicturesArriveWhole) {
    constexpr std::uint32_t width = 4099;
    constexpr std::uint32_t height = 1031;
    constexpr std::uint32_t rowBytes = width * bytesPerPixel;
    const auto picture = makePicture(std::size_t{rowBytes} * height);
    for (const std::uint32_t pitch : {rowBytes, rowBytes + 1, rowBytes + 20}) {
        GuardedBytes texture(std::size_t{height - 1} * pitch + rowBytes);
        copyToTexture({width, height, picture}, texture.bytes().data(), pitch, width, height);
        ASSERT_TRUE(texture.isIntact()) << "pitch " << pitch;
        for (std::size_t row = 0; row < height; ++row) {
            const auto written = texture.bytes().subspan(row * pitch);
            ASSERT_TRUE(std::ranges::equal(written.first(rowBytes),
                                           std::span(picture).subspan(row * rowBytes, rowBytes)))
                << "pitch " << pitch << ", row " << row;
            ASSERT_TRUE(row + 1 == height || std::ranges::all_of(written.subspan(rowBytes, pitch - rowBytes),
                                                                 [](auto byte) { return byte == untouched; }))
                << "pitch " << pitch << ", behind row " << row;
        }
    }
}

// A pitch that is the width in pixels, or none at all, means a texture without gaps.
TEST(PixelCopyTest, PitchInPixelsMeansPackedRows) {
    for (const std::uint32_t pitch : {0U, 8U}) {
        const auto picture = makePicture(8 * bytesPerPixel * 6);
        GuardedBytes texture(picture.size());
        copyToTexture({8, 6, picture}, texture.bytes().data(), pitch, 8, 6);
        EXPECT_TRUE(texture.isIntact());
        EXPECT_TRUE(std::ranges::equal(texture.bytes(), picture));
    }
}

// Where such a texture gets a picture of another size, the rows overlap, as long as they stay inside.
TEST(PixelCopyTest, UnusablePitchStaysInsideTheTexture) {
    for (const std::uint32_t pitch : {0U, 1U, 8U, 31U}) {
        forEachPicture([&](const PixelView& view) {
            GuardedBytes texture(8 * bytesPerPixel * 6);
            copyToTexture(view, texture.bytes().data(), pitch, 8, 6);
            ASSERT_TRUE(texture.isIntact()) << "pitch " << pitch;
        });
    }
}

TEST(PixelCopyTest, EmptyTextureTakesNothing) {
    const auto picture = makePicture(8 * bytesPerPixel * 6);
    for (const auto& [width, height] : {std::pair{0U, 6U}, {8U, 0U}, {0U, 0U}}) {
        for (const std::uint32_t pitch : {0U, 8U, 32U}) {
            GuardedBytes texture(0);
            copyToTexture({8, 6, picture}, texture.bytes().data(), pitch, width, height);
            copyToTexture({0, 0, {}}, texture.bytes().data(), pitch, width, height);
            EXPECT_TRUE(texture.isIntact());
        }
    }
}

TEST(PixelCopyTest, FitPixelsClipsAndFillsUp) {
    for (const Size& target : pictureSizes) {
        forEachPicture([&](const PixelView& view) {
            const auto rowBytes = static_cast<std::size_t>(std::max(target.width, 0)) * bytesPerPixel;
            const auto rows = static_cast<std::size_t>(std::max(target.height, 0));
            const auto down = fitPixels(view, target.width, target.height, RowOrder::topDown);
            const auto up = fitPixels(view, target.width, target.height, RowOrder::bottomUp);
            ASSERT_EQ(down.size(), rowBytes * rows);
            ASSERT_EQ(up.size(), rowBytes * rows);
            for (std::size_t row = 0; row < rows; ++row) {
                for (std::size_t column = 0; column < rowBytes; ++column) {
                    const auto expected = expectedByte(view, row, column, 0);
                    ASSERT_EQ(down[row * rowBytes + column], expected);
                    ASSERT_EQ(up[(rows - 1 - row) * rowBytes + column], expected);
                }
            }
        });
    }
}
