#pragma once

#include "platform.h"

/// Draws the control into the bitmap, so that the picture has about this many pixels, and returns the pixels:
/// BGRA8, premultiplied. UI thread.
foundation::IAsyncOperation<streams::IBuffer> renderPage(xaml::Media::Imaging::RenderTargetBitmap bitmap,
                                                         controls::WebView control, std::int32_t width,
                                                         std::int32_t height);
