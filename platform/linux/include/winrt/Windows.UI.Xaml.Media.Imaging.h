#pragma once

#include <winrt/Windows.Storage.Streams.h>
#include <winrt/Windows.UI.Xaml.h>

namespace winrt::Windows::UI::Xaml::Media::Imaging {

/// A picture of an element.
///
/// Rendering follows damage: it ends with the next frame that the element composes, at once when one is
/// waiting, and after a bounded wait with the unchanged picture otherwise. An unchanged picture is the very
/// same buffer object as before.
struct RenderTargetBitmap : Foundation::IInspectable {
    RenderTargetBitmap();
    WINRT_LINUX_HANDLE(RenderTargetBitmap, IInspectable)

    /// Renders the element scaled to a size in view pixels.
    Foundation::IAsyncAction RenderAsync(UIElement const& element, int32_t scaledWidth,
                                         int32_t scaledHeight) const;

    /// The pixels, BGRA with 8 bits a channel and premultiplied alpha, rows without gaps.
    Foundation::IAsyncOperation<Storage::Streams::IBuffer> GetPixelsAsync() const;

    int32_t PixelWidth() const;
    int32_t PixelHeight() const;
};

}  // namespace winrt::Windows::UI::Xaml::Media::Imaging
