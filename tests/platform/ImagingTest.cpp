#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <winrt/Windows.Graphics.Imaging.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "await.h"
#include "codeOf.h"
#include "glib_ptr.h"
#include "stream.h"

using namespace winrt::Windows::Graphics::Imaging;
using winrt::Windows::Storage::Streams::InMemoryRandomAccessStream;

namespace {

runtime::picture makePicture(int32_t width, int32_t height) {
    const auto size = static_cast<size_t>(width) * static_cast<size_t>(height) * 4;
    return {width, height, std::shared_ptr<uint8_t>(new uint8_t[size]{}, std::default_delete<uint8_t[]>())};
}

PixelDataProvider decode(const InMemoryRandomAccessStream& stream) {
    const auto decoder = await(BitmapDecoder::CreateAsync(stream));
    return await(decoder.GetPixelDataAsync(BitmapPixelFormat::Bgra8, BitmapAlphaMode::Premultiplied,
                                           BitmapTransform(), ExifOrientationMode::IgnoreExifOrientation,
                                           ColorManagementMode::DoNotColorManage));
}

BitmapEncoder makeEncoder(const InMemoryRandomAccessStream& stream) {
    return await(BitmapEncoder::CreateAsync(BitmapEncoder::PngEncoderId(), stream));
}

void setPixels(const BitmapEncoder& encoder, uint32_t width, uint32_t height,
               const std::vector<uint8_t>& pixels, double dpi = 96.0) {
    encoder.SetPixelData(BitmapPixelFormat::Bgra8, BitmapAlphaMode::Premultiplied, width, height, dpi, dpi,
                         pixels);
}

std::vector<uint8_t> encode(uint32_t width, uint32_t height, const std::vector<uint8_t>& pixels) {
    const InMemoryRandomAccessStream stream;
    const auto encoder = makeEncoder(stream);
    setPixels(encoder, width, height, pixels);
    await(encoder.FlushAsync());
    const winrt::Windows::Storage::Streams::DataReader reader(stream.GetInputStreamAt(0));
    std::vector<uint8_t> file(stream.Size());
    await(reader.LoadAsync(static_cast<uint32_t>(file.size())));
    reader.ReadBytes(file);
    return file;
}

runtime::gobject_ptr<GdkPixbuf> readPng(const std::vector<uint8_t>& file) {
    const auto loader =
        runtime::gobject_ptr<GdkPixbufLoader>::adopt(gdk_pixbuf_loader_new_with_type("png", nullptr));
    runtime::glib_error error;
    gdk_pixbuf_loader_write(loader.get(), file.data(), file.size(), error.put());
    EXPECT_FALSE(error) << error.message();
    gdk_pixbuf_loader_close(loader.get(), error.put());
    EXPECT_FALSE(error) << error.message();
    return runtime::gobject_ptr<GdkPixbuf>::share(gdk_pixbuf_loader_get_pixbuf(loader.get()));
}

}  // namespace

TEST(ImagingTest, DecoderPassesThePictureThrough) {
    const auto picture = makePicture(7, 3);
    const InMemoryRandomAccessStream stream;
    runtime::store_picture(stream, picture);
    const auto decoder = await(BitmapDecoder::CreateAsync(stream));
    EXPECT_EQ(decoder.PixelWidth(), 7u);
    EXPECT_EQ(decoder.PixelHeight(), 3u);
    const auto pixels = decode(stream).DetachPixelData();
    EXPECT_EQ(pixels.data(), picture.pixels.get());
    EXPECT_EQ(pixels.size(), 7u * 3 * 4);
    EXPECT_EQ(decode(stream).DetachPixelData().data(), picture.pixels.get());
}

TEST(ImagingTest, DecoderRefusesWhatIsNoCapturedPicture) {
    EXPECT_EQ(codeOf([] { await(BitmapDecoder::CreateAsync(InMemoryRandomAccessStream())); }),
              WINCODEC_ERR_COMPONENTNOTFOUND);
    EXPECT_EQ(codeOf([] { await(BitmapDecoder::CreateAsync(nullptr)); }), E_POINTER);
    const InMemoryRandomAccessStream stream;
    runtime::store_picture(stream, makePicture(1, 1));
    const auto decoder = await(BitmapDecoder::CreateAsync(stream));
    constexpr auto rgba8 = static_cast<BitmapPixelFormat>(30);
    EXPECT_EQ(codeOf([&] {
                  await(decoder.GetPixelDataAsync(rgba8, BitmapAlphaMode::Premultiplied, BitmapTransform(),
                                                  ExifOrientationMode::IgnoreExifOrientation,
                                                  ColorManagementMode::DoNotColorManage));
              }),
              WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT);
}

// Every colour with every alpha: the file must hold the straight colour that comes nearest.
TEST(ImagingTest, EncoderUndoesTheMultiplicationWithAlpha) {
    std::vector<uint8_t> pixels;
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int colour = 0; colour < 256; ++colour) {
            const auto value = static_cast<uint8_t>(colour);
            const auto limited = static_cast<uint8_t>(std::min(colour, alpha));
            pixels.insert(pixels.end(), {limited, static_cast<uint8_t>(alpha - limited), value,
                                         static_cast<uint8_t>(alpha)});
        }
    }
    const auto image = readPng(encode(256, 256, pixels));
    ASSERT_EQ(gdk_pixbuf_get_width(image.get()), 256);
    ASSERT_EQ(gdk_pixbuf_get_height(image.get()), 256);
    ASSERT_EQ(gdk_pixbuf_get_n_channels(image.get()), 4);
    const auto straight = [](int colour, int alpha) {
        return alpha == 0 ? 0 : std::min(255, static_cast<int>(std::floor(colour * 255.0 / alpha + 0.5)));
    };
    int differences = 0;
    const auto rowSize = static_cast<size_t>(gdk_pixbuf_get_rowstride(image.get()));
    for (size_t y = 0; y < 256; ++y) {
        const auto* row = gdk_pixbuf_read_pixels(image.get()) + y * rowSize;
        for (size_t x = 0; x < 256; ++x) {
            const auto* in = &pixels[(y * 256 + x) * 4];
            const auto* out = row + x * 4;
            differences += out[0] != straight(in[2], in[3]) || out[1] != straight(in[1], in[3]) ||
                           out[2] != straight(in[0], in[3]) || out[3] != in[3];
        }
    }
    EXPECT_EQ(differences, 0);
}

TEST(ImagingTest, EncoderRecordsTheResolution) {
    const auto file = encode(1, 1, {0, 0, 0, 255});
    const std::string text(file.begin(), file.end());
    const auto chunk = text.find("pHYs");
    ASSERT_NE(chunk, text.npos);
    EXPECT_EQ(text.substr(chunk + 4, 9), std::string("\0\0\x0E\xC4\0\0\x0E\xC4\1", 9));  // 3780 a metre
}

TEST(ImagingTest, EncoderKeepsNoPartOfTheCallersPixels) {
    const InMemoryRandomAccessStream stream;
    const auto encoder = makeEncoder(stream);
    std::vector<uint8_t> pixels{1, 2, 3, 255};
    setPixels(encoder, 1, 1, pixels);
    std::ranges::fill(pixels, uint8_t{0});
    await(encoder.FlushAsync());
    const auto content = static_cast<runtime::memory_stream&>(*stream.get_implementation()).content();
    const auto image = readPng({content.bytes.get(), content.bytes.get() + content.length});
    EXPECT_EQ(gdk_pixbuf_read_pixels(image.get())[0], 3);
}

TEST(ImagingTest, EncoderRefusesWhatItCannotEncode) {
    const InMemoryRandomAccessStream stream;
    const auto encoder = makeEncoder(stream);
    EXPECT_EQ(codeOf([&] { await(BitmapEncoder::CreateAsync(winrt::guid{}, stream)); }),
              WINCODEC_ERR_COMPONENTNOTFOUND);
    EXPECT_EQ(codeOf([&] { await(encoder.FlushAsync()); }), WINCODEC_ERR_FRAMEMISSING);
    EXPECT_EQ(codeOf([&] { setPixels(encoder, 2, 2, std::vector<uint8_t>(15)); }),
              WINCODEC_ERR_INSUFFICIENTBUFFER);
    EXPECT_EQ(codeOf([&] { setPixels(encoder, 2, 2, std::vector<uint8_t>(17)); }), E_INVALIDARG);
    EXPECT_EQ(codeOf([&] { setPixels(encoder, 0, 2, {}); }), E_INVALIDARG);
    EXPECT_EQ(codeOf([&] { setPixels(encoder, 0xFFFFFFFF, 0xFFFFFFFF, std::vector<uint8_t>(4)); }),
              WINCODEC_ERR_INSUFFICIENTBUFFER);
    EXPECT_EQ(codeOf([&] { setPixels(encoder, 1, 1, std::vector<uint8_t>(4), 0); }), E_INVALIDARG);
    EXPECT_EQ(codeOf([&] {
                  setPixels(encoder, 1, 1, std::vector<uint8_t>(4), std::numeric_limits<double>::quiet_NaN());
              }),
              E_INVALIDARG);
    EXPECT_EQ(stream.Size(), 0u);
    setPixels(encoder, 1, 1, std::vector<uint8_t>(4));
    await(encoder.FlushAsync());
    EXPECT_EQ(codeOf([&] { await(encoder.FlushAsync()); }), WINCODEC_ERR_WRONGSTATE);
    EXPECT_EQ(codeOf([&] { setPixels(encoder, 1, 1, std::vector<uint8_t>(4)); }), WINCODEC_ERR_WRONGSTATE);
}
