// Sizes of pictures, right and wrong ones: fitting a picture to a size, copying it into a texture, and
// encoding it.

#include <png.h>

#include <algorithm>
#include <cstring>

#include "fuzz/support/InputReader.h"
#include "fuzz/support/Require.h"
#include "offscreen/PixelCopy.h"
#include "platform.h"
#include "platform/await.h"

namespace {

/// A side's length: mostly one that fits into memory, now and then any.
std::int32_t takeLength(InputReader& input) {
    const int kind = input.takeByte();
    return kind < 224 ? kind % 48 : static_cast<std::int32_t>(input.takeNumber());
}

/// Memory of exactly this many bytes, so that the sanitizer sees any access beyond.
std::vector<std::uint8_t> makePixels(std::size_t count) {
    std::vector<std::uint8_t> pixels(count);
    for (std::size_t i = 0; i < count; ++i) {
        pixels[i] = static_cast<std::uint8_t>(1 + i % 251);
    }
    pixels.shrink_to_fit();
    return pixels;
}

constexpr std::int32_t largestTarget = 256;

void checkFit(const PixelView& picture, std::int32_t width, std::int32_t height, RowOrder order) {
    const auto fitted = fitPixels(picture, width, height, order);
    const auto pixels =
        static_cast<std::size_t>(std::max(width, 0)) * static_cast<std::size_t>(std::max(height, 0));
    require(fitted.size() == pixels * bytesPerPixel, "a fitted picture has the size asked for");
}

void checkTexture(const PixelView& picture, std::uint32_t width, std::uint32_t height,
                  std::uint32_t padding) {
    const auto rowBytes = static_cast<std::size_t>(width) * bytesPerPixel;
    const auto pitch = rowBytes + padding;
    std::vector<std::uint8_t> texture(pitch * height);
    texture.shrink_to_fit();
    copyToTexture(picture, texture.data(), static_cast<std::uint32_t>(pitch), width, height);
    for (std::size_t i = 0; i < texture.size(); ++i) {
        require(texture[i] == 0 || i % pitch < rowBytes, "nothing is written into a texture's padding");
    }
}

/// A picture is encoded with the size given, or refused.
void checkEncoding(std::int32_t width, std::int32_t height, double resolution,
                   const std::vector<std::uint8_t>& pixels) {
    const streams::InMemoryRandomAccessStream stream;
    const auto encoder =
        await(imaging::BitmapEncoder::CreateAsync(imaging::BitmapEncoder::PngEncoderId(), stream));
    const bool fits =
        width > 0 && height > 0 &&
        std::uint64_t{4} * static_cast<std::uint32_t>(width) * static_cast<std::uint32_t>(height) ==
            pixels.size();
    try {
        encoder.SetPixelData(imaging::BitmapPixelFormat::Bgra8, imaging::BitmapAlphaMode::Premultiplied,
                             static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                             resolution, resolution, pixels);
    } catch (const winrt::hresult_error&) {
        require(!fits || !(resolution >= 1 && resolution <= 10'000), "a picture of a right size is encoded");
        return;
    }
    require(fits, "a picture of a wrong size is refused");
    await(encoder.FlushAsync());
    const streams::DataReader reader(stream.GetInputStreamAt(0));
    std::vector<std::uint8_t> file(static_cast<std::size_t>(stream.Size()));
    await(reader.LoadAsync(static_cast<std::uint32_t>(file.size())));
    reader.ReadBytes(file);
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    require(png_image_begin_read_from_memory(&image, file.data(), file.size()),
            "what was encoded is a PNG file");
    require(image.width == static_cast<std::uint32_t>(width) &&
                image.height == static_cast<std::uint32_t>(height),
            "a PNG file has the picture's size");
    image.format = PNG_FORMAT_BGRA;
    std::vector<std::uint8_t> decoded(PNG_IMAGE_SIZE(image));
    require(png_image_finish_read(&image, nullptr, decoded.data(), 0, nullptr), "a PNG file is whole");
    for (std::size_t i = 3; i < decoded.size(); i += bytesPerPixel) {
        require(decoded[i] == pixels[i], "a PNG file keeps what is transparent");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    InputReader input({data, size});
    const auto width = takeLength(input);
    const auto height = takeLength(input);
    const auto targetWidth = takeLength(input) % largestTarget;
    const auto targetHeight = takeLength(input) % largestTarget;
    const auto padding = input.takeByte();
    const auto number = input.takeReal();
    const auto missing = static_cast<std::int32_t>(input.takeByte()) - 64;

    // As many bytes as the size says, or some fewer or more.
    const std::int64_t whole =
        std::int64_t{4} * std::clamp(width, 0, largestTarget) * std::clamp(height, 0, largestTarget);
    const auto pixels = makePixels(
        static_cast<std::size_t>(std::max<std::int64_t>(0, missing > 0 ? whole - missing : whole)));
    const PixelView picture{width, height, pixels};
    checkFit(picture, targetWidth, targetHeight, RowOrder::topDown);
    checkFit(picture, targetWidth, targetHeight, RowOrder::bottomUp);
    checkTexture(picture, static_cast<std::uint32_t>(std::max(targetWidth, 0)),
                 static_cast<std::uint32_t>(std::max(targetHeight, 0)), padding);
    checkEncoding(width, height, 96, pixels);
    checkEncoding(1, 1, number, makePixels(4));
    return 0;
}
