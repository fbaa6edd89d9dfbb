// Pictures of pages, and how they are made, read and written.

#include "World.h"

namespace app {

namespace {

using xaml::Media::Imaging::IRenderTargetBitmap;

Picture pictureIn(const Bytes& file) {
    Picture picture;
    if (file.size() != sizeof picture) {
        throw winrt::hresult_error(static_cast<HRESULT>(0x88982F50));  // no decoder
    }
    std::memcpy(&picture, file.data(), sizeof picture);
    return picture;
}

imaging::PixelDataProvider pixelsOf(const Picture& picture) {
    return make(L"Windows.Graphics.Imaging.PixelDataProvider")
        .on<METHOD(imaging::IPixelDataProvider, DetachPixelData)>(
            [picture](std::uint32_t* size, std::uint8_t** bytes) {
                winrt::com_array<std::uint8_t> all(picture.pixels());
                std::tie(*size, *bytes) = winrt::detach_abi(all);
            });
}

imaging::BitmapDecoder decoderOf(const Picture& picture) {
    return make(L"Windows.Graphics.Imaging.BitmapDecoder")
        .also<imaging::IBitmapDecoder>()
        .constant<METHOD(imaging::IBitmapFrame, get_PixelWidth)>(picture.width)
        .constant<METHOD(imaging::IBitmapFrame, get_PixelHeight)>(picture.height)
        .on<METHOD(imaging::IBitmapFrame, GetPixelDataTransformedAsync)>(
            [picture](imaging::BitmapPixelFormat format, imaging::BitmapAlphaMode alpha) {
                check(format == imaging::BitmapPixelFormat::Bgra8 &&
                          alpha == imaging::BitmapAlphaMode::Premultiplied,
                      "pixels of another format were asked for");
                return operation<imaging::PixelDataProvider>([picture] { return pixelsOf(picture); });
            });
}

auto decode(const streams::IRandomAccessStream& stream) {
    return operation<imaging::BitmapDecoder>(
        [stream] { return decoderOf(pictureIn(behind<Bytes>(stream))); });
}

constexpr winrt::guid png{0x27949969, 0x876A, 0x41D7, {0x94, 0x47, 0x56, 0x8F, 0x6A, 0x35, 0xA4, 0xDC}};

/// Its files are the bare pixels.
imaging::BitmapEncoder encoderInto(const streams::IRandomAccessStream& stream) {
    const auto pixels = std::make_shared<Bytes>();
    return make(L"Windows.Graphics.Imaging.BitmapEncoder")
        .on<METHOD(imaging::IBitmapEncoder, SetPixelData)>(
            [pixels](std::int32_t, std::int32_t, std::uint32_t width, std::uint32_t height, double, double,
                     std::uint32_t size, std::uint8_t* bytes) {
                check(size == width * height * 4, "the encoder's pixels have another size");
                pixels->assign(bytes, bytes + size);
            })
        .on<METHOD(imaging::IBitmapEncoder, FlushAsync)>(
            [stream, pixels] { return action([=] { behind<Bytes>(stream) = *pixels; }); });
}

auto encode(winrt::guid id, const streams::IRandomAccessStream& stream) {
    check(id == png, "another encoder was asked for");
    return operation<imaging::BitmapEncoder>([stream] { return encoderInto(stream); });
}

foundation::IInspectable transform() {
    return make(L"Windows.Graphics.Imaging.BitmapTransform").also<imaging::IBitmapTransform>();
}

foundation::IInspectable renderTarget() {
    const auto picture = std::make_shared<Picture>();
    if (const auto react = world()->beforeRendering) {
        react();
    }
    return make(L"Windows.UI.Xaml.Media.Imaging.RenderTargetBitmap", Object::Threads::ui)
        .on<METHOD(IRenderTargetBitmap, get_PixelWidth)>([picture] { return picture->width; })
        .on<METHOD(IRenderTargetBitmap, get_PixelHeight)>([picture] { return picture->height; })
        .on<METHOD(IRenderTargetBitmap, RenderToSizeAsync)>(
            [picture](void*, std::int32_t width, std::int32_t height) {
                check(width <= windowBounds.Width && height <= windowBounds.Height,
                      "what lies outside the window was to be rendered");
                return action([=] {
                    ++world()->renderings;
                    *picture = pictureOf(width, height);
                });
            })
        .on<METHOD(IRenderTargetBitmap, GetPixelsAsync)>([picture] {
            return operation<streams::IBuffer>([rendered = *picture] { return bufferOf(rendered.pixels()); });
        });
}

}  // namespace

std::uint32_t pixelAt(std::uint32_t x, std::uint32_t y, std::uint8_t colour) {
    return 0xFF000000U | std::uint32_t{colour} << 16U | (y & 255U) << 8U | (x & 255U);
}

Picture pictureOf(double width, double height) {
    const double scale = world()->rawPixelsPerViewPixel;
    return {static_cast<std::uint32_t>(width * scale), static_cast<std::uint32_t>(height * scale),
            world()->colour};
}

Bytes Picture::pixels() const {
    Bytes bytes(std::size_t{width} * height * 4);
    for (std::uint32_t y = 0; y < height; ++y) {
        for (std::uint32_t x = 0; x < width; ++x) {
            const std::uint32_t pixel = pixelAt(x, y, colour);
            std::memcpy(&bytes[(std::size_t{y} * width + x) * 4], &pixel, sizeof pixel);
        }
    }
    return bytes;
}

Bytes Picture::file() const {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(this);
    return {bytes, bytes + sizeof *this};
}

Factories pictures() {
    return {
        {L"Windows.Graphics.Imaging.BitmapDecoder",
         answering<METHOD(imaging::IBitmapDecoderStatics, CreateAsync)>(decode)},
        {L"Windows.Graphics.Imaging.BitmapEncoder",
         make(L"factory")
             .constant<METHOD(imaging::IBitmapEncoderStatics, get_PngEncoderId)>(png)
             .on<METHOD(imaging::IBitmapEncoderStatics, CreateAsync)>(encode)},
        {L"Windows.Graphics.Imaging.BitmapTransform", activating(transform)},
        {L"Windows.UI.Xaml.Media.Imaging.RenderTargetBitmap", activating(renderTarget)},
    };
}

}  // namespace app
