#include "offscreen/Screenshots.h"

#include <limits>

#include "exports/HostChannel.h"
#include "exports/LogTexts.h"
#include "offscreen/LogTexts.h"
#include "offscreen/PageRenderer.h"
#include "offscreen/PixelCopy.h"
#include "webview/UwpWebView.h"

using imaging::BitmapAlphaMode;
using imaging::BitmapEncoder;
using imaging::BitmapPixelFormat;
using xaml::Media::Imaging::RenderTargetBitmap;

namespace {

constexpr double dotsPerInch = 96.0;

/// In bytes. What is more is not even begun.
constexpr std::int64_t largestDataResult = std::numeric_limits<std::int32_t>::max();

/// The size of a picture of the view; nothing, with an error line, if there is nothing to show or too much.
struct PageSize {
    std::int32_t width = 0;
    std::int32_t height = 0;

    explicit operator bool() const { return width > 0 && height > 0; }
};

PageSize pageSize(const UwpWebView& view, const char* textWithoutSize) {
    PageSize size;
    if (view.control()) {
        size = {view.getWidth(), view.getHeight()};
    }
    if (!size) {
        logError(textWithoutSize);
    } else if (std::int64_t{size.width} * size.height > largestDataResult / std::int64_t{bytesPerPixel}) {
        logError(log_texts::dataResultTooLarge);
        size = {};
    }
    return size;
}

/// The picture that was rendered, brought to exactly the size of the view: on displays whose scale is no
/// integer the bitmap is a pixel smaller.
std::vector<std::uint8_t> fitToPage(const RenderTargetBitmap& bitmap, const streams::IBuffer& pixels,
                                    PageSize size, RowOrder order) {
    const PixelView rendered{bitmap.PixelWidth(), bitmap.PixelHeight(), {pixels.data(), pixels.Length()}};
    return fitPixels(rendered, size.width, size.height, order);
}

}  // namespace

foundation::IAsyncAction captureScreenshot(std::shared_ptr<UwpWebView> view, std::string resultCallbackId) {
    co_await winrt::resume_foreground(uiDispatcher());
    if (view->isDestroyed()) {
        co_return;
    }
    const PageSize size = pageSize(*view, log_texts::screenshotWithoutSize);
    if (!size) {
        co_return;
    }
    const RenderTargetBitmap bitmap;
    const auto pixels = co_await renderPage(bitmap, view->control(), size.width, size.height);
    const auto picture = fitToPage(bitmap, pixels, size, RowOrder::topDown);

    const streams::InMemoryRandomAccessStream stream;
    const auto encoder = co_await BitmapEncoder::CreateAsync(BitmapEncoder::PngEncoderId(), stream);
    encoder.SetPixelData(BitmapPixelFormat::Bgra8, BitmapAlphaMode::Premultiplied, size.width, size.height,
                         dotsPerInch, dotsPerInch, picture);
    co_await encoder.FlushAsync();

    const auto fileSize = static_cast<std::uint32_t>(stream.Size());
    const streams::DataReader reader(stream.GetInputStreamAt(0));
    co_await reader.LoadAsync(fileSize);
    std::vector<std::uint8_t> file(fileSize);
    reader.ReadBytes(file);
    if (!view->isDestroyed()) {
        view->sendData(resultCallbackId, file);
    }
}

foundation::IAsyncAction getRawTextureData(std::shared_ptr<UwpWebView> view, std::string resultCallbackId) {
    co_await winrt::resume_foreground(uiDispatcher());
    if (view->isDestroyed()) {
        co_return;
    }
    const PageSize size = pageSize(*view, log_texts::rawDataWithoutSize);
    if (!size) {
        co_return;
    }
    const RenderTargetBitmap bitmap;
    const auto pixels = co_await renderPage(bitmap, view->control(), size.width, size.height);
    if (!view->isDestroyed()) {
        view->sendData(resultCallbackId, fitToPage(bitmap, pixels, size, RowOrder::bottomUp));
    }
}
