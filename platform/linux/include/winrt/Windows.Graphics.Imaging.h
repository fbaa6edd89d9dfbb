#pragma once

#include <winrt/Windows.Storage.Streams.h>
#include <winrt/impl/guid.h>

namespace winrt::Windows::Graphics::Imaging {

enum class BitmapPixelFormat : int32_t { Bgra8 = 87 };

enum class BitmapAlphaMode : int32_t { Premultiplied = 0 };

enum class ExifOrientationMode : int32_t { IgnoreExifOrientation = 0 };

enum class ColorManagementMode : int32_t { DoNotColorManage = 0 };

/// How a decoder changes the picture: not at all.
struct BitmapTransform : Foundation::IInspectable {
    BitmapTransform();
    WINRT_LINUX_HANDLE(BitmapTransform, IInspectable)
};

struct PixelDataProvider : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(PixelDataProvider, IInspectable)

    /// The pixels, rows without gaps. It is the picture's own memory, the same as long as the picture is the
    /// same, and must not be written to.
    com_array<uint8_t> DetachPixelData() const;
};

/// Gives back the picture that was captured into a stream in memory. Any thread.
struct BitmapDecoder : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(BitmapDecoder, IInspectable)

    /// WINCODEC_ERR_COMPONENTNOTFOUND when the stream holds anything but a captured picture.
    static Foundation::IAsyncOperation<BitmapDecoder> CreateAsync(
        Storage::Streams::IRandomAccessStream const& stream);

    uint32_t PixelWidth() const;
    uint32_t PixelHeight() const;

    Foundation::IAsyncOperation<PixelDataProvider> GetPixelDataAsync(
        BitmapPixelFormat pixelFormat, BitmapAlphaMode alphaMode, BitmapTransform const& transform,
        ExifOrientationMode exifOrientationMode, ColorManagementMode colorManagementMode) const;
};

/// Writes one picture as a PNG file into a stream. Any thread, one at a time.
struct BitmapEncoder : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(BitmapEncoder, IInspectable)

    static guid PngEncoderId();
    static Foundation::IAsyncOperation<BitmapEncoder> CreateAsync(
        guid const& encoderId, Storage::Streams::IRandomAccessStream const& stream);

    /// The picture: `width` x `height` pixels of 4 bytes, rows without gaps. The pixels are copied.
    void SetPixelData(BitmapPixelFormat pixelFormat, BitmapAlphaMode alphaMode, uint32_t width,
                      uint32_t height, double dpiX, double dpiY, array_view<uint8_t const> pixels) const;

    /// Encodes on a pool thread and replaces the stream's content.
    Foundation::IAsyncAction FlushAsync() const;
};

}  // namespace winrt::Windows::Graphics::Imaging
