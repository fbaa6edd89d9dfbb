#include "offscreen/PageRenderer.h"

#include "webview/Numbers.h"

using winrt::Windows::Graphics::Display::DisplayInformation;
using xaml::Media::Imaging::RenderTargetBitmap;

foundation::IAsyncOperation<streams::IBuffer> renderPage(RenderTargetBitmap bitmap, controls::WebView control,
                                                         std::int32_t width, std::int32_t height) {
    // The bitmap is asked for in view pixels, of which a display may need several raw ones.
    const double rawPixelsPerViewPixel = DisplayInformation::GetForCurrentView().RawPixelsPerViewPixel();
    co_await bitmap.RenderAsync(control, truncate(width / rawPixelsPerViewPixel),
                                truncate(height / rawPixelsPerViewPixel));
    co_return co_await bitmap.GetPixelsAsync();
}
