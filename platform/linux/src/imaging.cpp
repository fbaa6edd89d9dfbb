#include <winrt/Windows.Graphics.Imaging.h>

#include <cmath>

#include "implementation.h"
#include "png_encoder.h"
#include "stream.h"

namespace runtime {

namespace {

namespace imaging = winrt::Windows::Graphics::Imaging;

struct transform_object : winrt::impl::object {};

/// A decoder, and what it decoded: the picture as it is.
struct decoder_object : winrt::impl::object {
    explicit decoder_object(picture image) : image(std::move(image)) {}

    picture const image;
};

struct encoder_object : winrt::impl::object {
    explicit encoder_object(std::shared_ptr<memory_stream> target) : target(std::move(target)) {}

    std::shared_ptr<memory_stream> const target;
    std::optional<unencoded_picture> pending;
    bool flushed = false;
};

constexpr winrt::guid pngEncoder{
    0x27949969, 0x876A, 0x41D7, {0x94, 0x47, 0x56, 0x8F, 0x6A, 0x35, 0xA4, 0xDC}};

void require_supported(imaging::BitmapPixelFormat format, imaging::BitmapAlphaMode alpha) {
    if (format != imaging::BitmapPixelFormat::Bgra8 || alpha != imaging::BitmapAlphaMode::Premultiplied) {
        throw winrt::hresult_error(WINCODEC_ERR_UNSUPPORTEDPIXELFORMAT,
                                   L"Pixels can only be BGRA with 8 bits a channel and premultiplied alpha.");
    }
}

void require_size(uint32_t width, uint32_t height, uint32_t bytes) {
    if (width == 0 || height == 0) {
        throw winrt::hresult_error(E_INVALIDARG, L"A picture without pixels cannot be encoded.");
    }
    // In whole rows first: width times height times 4 may be more than 64 bits hold.
    uint64_t const rowBytes = uint64_t{width} * 4;
    uint64_t const rows = bytes / rowBytes;
    if (rows < height) {
        throw winrt::hresult_error(WINCODEC_ERR_INSUFFICIENTBUFFER,
                                   L"There are fewer pixels than the picture's width and height need.");
    }
    if (rows > height || bytes % rowBytes != 0) {
        throw winrt::hresult_error(E_INVALIDARG, L"There are more pixels than the picture has room for.");
    }
}

void require_resolution(double dpi) {
    bool const in_range = dpi >= 1 && dpi <= 10'000;  // which not-a-number is not
    if (!in_range) {
        throw winrt::hresult_error(E_INVALIDARG, L"The picture's resolution is out of range.");
    }
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::Graphics::Imaging {

using runtime::decoder_object;
using runtime::encoder_object;
using runtime::implementation_of;

BitmapTransform::BitmapTransform() : IInspectable(std::make_shared<runtime::transform_object>()) {}

com_array<uint8_t> PixelDataProvider::DetachPixelData() const {
    auto const& image = implementation_of<decoder_object>(*this)->image;
    return {image.pixels, image.size()};
}

// The platform's signatures; their bodies are done with the arguments before anything can suspend.
// NOLINTBEGIN(cppcoreguidelines-avoid-reference-coroutine-parameters)

Foundation::IAsyncOperation<BitmapDecoder> BitmapDecoder::CreateAsync(
    Storage::Streams::IRandomAccessStream const& stream) {
    auto const source = implementation_of<runtime::stream_object>(stream);
    auto const* const memory = dynamic_cast<runtime::memory_stream const*>(source.get());
    auto image = memory ? memory->held_picture() : std::nullopt;
    if (!image) {
        throw hresult_error(WINCODEC_ERR_COMPONENTNOTFOUND,
                            L"The stream holds no picture that can be decoded.");
    }
    co_return BitmapDecoder(std::make_shared<decoder_object>(*std::move(image)));
}

uint32_t BitmapDecoder::PixelWidth() const {
    return static_cast<uint32_t>(implementation_of<decoder_object>(*this)->image.width);
}

uint32_t BitmapDecoder::PixelHeight() const {
    return static_cast<uint32_t>(implementation_of<decoder_object>(*this)->image.height);
}

Foundation::IAsyncOperation<PixelDataProvider> BitmapDecoder::GetPixelDataAsync(
    BitmapPixelFormat pixelFormat, BitmapAlphaMode alphaMode, BitmapTransform const& transform,
    ExifOrientationMode, ColorManagementMode) const {
    runtime::require_supported(pixelFormat, alphaMode);
    implementation_of<runtime::transform_object>(transform);
    co_return PixelDataProvider(implementation_of<decoder_object>(*this));
}

guid BitmapEncoder::PngEncoderId() {
    return runtime::pngEncoder;
}

Foundation::IAsyncOperation<BitmapEncoder> BitmapEncoder::CreateAsync(
    guid const& encoderId, Storage::Streams::IRandomAccessStream const& stream) {
    if (encoderId != runtime::pngEncoder) {
        throw hresult_error(WINCODEC_ERR_COMPONENTNOTFOUND, L"Pictures can only be encoded as PNG.");
    }
    co_return BitmapEncoder(std::make_shared<encoder_object>(runtime::memory_stream_of(stream)));
}

// NOLINTEND(cppcoreguidelines-avoid-reference-coroutine-parameters)

void BitmapEncoder::SetPixelData(BitmapPixelFormat pixelFormat, BitmapAlphaMode alphaMode, uint32_t width,
                                 uint32_t height, double dpiX, double dpiY,
                                 array_view<uint8_t const> pixels) const {
    auto const encoder = implementation_of<encoder_object>(*this);
    if (encoder->flushed) {
        throw hresult_error(WINCODEC_ERR_WRONGSTATE, L"The picture has been written already.");
    }
    runtime::require_supported(pixelFormat, alphaMode);
    runtime::require_size(width, height, pixels.size());
    runtime::require_resolution(dpiX);
    runtime::require_resolution(dpiY);
    encoder->pending = {width, height, dpiX, dpiY, {pixels.begin(), pixels.end()}};
}

Foundation::IAsyncAction BitmapEncoder::FlushAsync() const {
    auto const encoder = implementation_of<encoder_object>(*this);
    if (encoder->flushed) {
        throw hresult_error(WINCODEC_ERR_WRONGSTATE, L"The picture has been written already.");
    }
    if (!encoder->pending) {
        throw hresult_error(WINCODEC_ERR_FRAMEMISSING, L"There is no picture to encode.");
    }
    encoder->flushed = true;
    co_await resume_background();
    encoder->target->store(runtime::encode_png(*std::move(encoder->pending)));
    encoder->pending.reset();
}

}  // namespace winrt::Windows::Graphics::Imaging
