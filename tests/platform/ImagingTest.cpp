#include <gdk-pixbuf/gdk-pixbuf.h>
#include <gtest/gtest.h>
#include <winrt/Windows.Graphics.Imaging.h>

#include <algorithm>
#include <cmath>

#include "await.h"
#include "glib_ptr.h"

using namespace winrt::Windows::Graphics::Imaging;
using winrt::Windows::Storage::Streams::InMemoryRandomAccessStream;

namespace {

std::vector<uint8_t> encode(uint32_t width, uint32_t height, const std::vector<uint8_t>& pixels) {
    const InMemoryRandomAccessStream stream;
    const auto encoder = await(BitmapEncoder::CreateAsync(BitmapEncoder::PngEncoderId(), stream));
    encoder.SetPixelData(BitmapPixelFormat::Bgra8, BitmapAlphaMode::Premultiplied, width, height, 96, 96,
                         pixels);
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
