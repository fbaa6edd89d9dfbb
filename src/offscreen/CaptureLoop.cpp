#include "exports/Exceptions.h"
#include "exports/HostChannel.h"
#include "offscreen/AtEnd.h"
#include "offscreen/LogTexts.h"
#include "offscreen/PageRenderer.h"
#include "offscreen/UwpWebView3D.h"
#include "webview/Numbers.h"

using xaml::Media::Imaging::RenderTargetBitmap;

namespace {

constexpr std::int32_t largestBitmap = 4096;

/// How long a loop that cannot capture leaves the UI thread alone before its next attempt.
constexpr std::chrono::milliseconds pauseUntilReady{16};
constexpr std::chrono::milliseconds pauseAfterFailure{100};

/// How long a picture waits for the engine to take the one before it: a turn and a half at 60 turns a second.
/// A slower engine gets the newest picture.
constexpr std::chrono::milliseconds longestHold{25};

foundation::IAsyncAction setAfter(std::chrono::milliseconds duration,
                                  std::shared_ptr<CompletionEvent> event) {
    const AtEnd wake([&event] { event->set(); });
    co_await pauseOnUIThread(duration);
}

}  // namespace

bool fitsBitmapCapture(std::int32_t width, std::int32_t height, const foundation::Rect& visibleBounds) {
    return width <= largestBitmap && width <= truncate(visibleBounds.Width) && height <= largestBitmap &&
           height <= truncate(visibleBounds.Height);
}

void UwpWebView3D::startCaptureLoop() {
    launch("capturing the page", captureLoop());
}

/// One picture after the other, at the rate that capturing achieves, until rendering is disabled or the view
/// destroyed. Enabling the rendering again while a capture is in progress starts a second loop beside it.
foundation::IAsyncAction UwpWebView3D::captureLoop() {
    const auto self = shared_from_this();
    ++captureLoopsRunning;
    const AtEnd stop([this] {
        if (--captureLoopsRunning == 0 && destroyed) {
            loopStopped.set();
        }
    });
    while (renderingEnabled && !destroyed) {
        bool failed = false;
        try {
            foundation::IAsyncAction capture{nullptr};
            frameTimer.tick([&] { capture = captureFrame(); });
            co_await capture;
            lastCaptureFailure.clear();
        } catch (...) {
            reportCaptureFailure(currentExceptionText());
            failed = true;
        }
        if (failed) {
            co_await pauseOnUIThread(pauseAfterFailure);
        }
    }
}

foundation::IAsyncAction UwpWebView3D::captureFrame() {
    const bool bitmap = usesBitmapCapture() && fitsBitmapCapture(scaledWidth, scaledHeight, visibleBounds);
    return bitmap ? captureBitmap() : capturePreview();
}

foundation::IAsyncAction UwpWebView3D::captureBitmap() {
    const auto self = shared_from_this();
    const RenderTargetBitmap bitmap;
    const auto pixels = co_await renderPage(bitmap, webView, scaledWidth, scaledHeight);
    co_await publishFrame(
        std::make_shared<const PixelFrame>(bitmap.PixelWidth(), bitmap.PixelHeight(), pixels));
}

foundation::IAsyncAction UwpWebView3D::capturePreview() {
    const auto self = shared_from_this();
    if (!domContentLoaded) {
        co_await pauseOnUIThread(pauseUntilReady);
        co_return;
    }
    const streams::InMemoryRandomAccessStream stream;
    co_await webView.CapturePreviewToStreamAsync(stream);
    const auto decoder = co_await imaging::BitmapDecoder::CreateAsync(stream);
    const auto provider = co_await decoder.GetPixelDataAsync(
        imaging::BitmapPixelFormat::Bgra8, imaging::BitmapAlphaMode::Premultiplied,
        imaging::BitmapTransform(), imaging::ExifOrientationMode::IgnoreExifOrientation,
        imaging::ColorManagementMode::DoNotColorManage);
    co_await publishFrame(std::make_shared<const PixelFrame>(static_cast<std::int32_t>(decoder.PixelWidth()),
                                                             static_cast<std::int32_t>(decoder.PixelHeight()),
                                                             provider.DetachPixelData()));
}

foundation::IAsyncAction UwpWebView3D::publishFrame(std::shared_ptr<const PixelFrame> frame) {
    const auto self = shared_from_this();
    const bool unchanged = publishedFrame && publishedFrame->bytes.data() == frame->bytes.data() &&
                           publishedFrame->bytes.size() == frame->bytes.size();
    if (destroyed || (!publishUnchanged.exchange(false) && unchanged)) {
        co_return;
    }
    const auto earlier = publishedFrame;
    co_await untilFrameTaken();
    // A second loop does not wait; a picture of its own is the newer one.
    if (destroyed || publishedFrame != earlier) {
        co_return;
    }
    publishedFrame = frame;
    // A frame that was never uploaded is dropped, after unlocking.
    const std::lock_guard lock(frameMutex);
    pendingFrame.swap(frame);
}

/// The page's clock and the engine's are two: now and then two pictures come within one turn of the engine
/// and none within the next. The second waits here, so that both are shown. It also waits until the first is
/// freed, since the platform can then draw the third into the same memory.
foundation::IAsyncAction UwpWebView3D::untilFrameTaken() {
    const auto self = shared_from_this();
    const auto taken = std::make_shared<CompletionEvent>();
    {
        const std::lock_guard lock(frameMutex);
        const bool slotIsFree = !pendingFrame && !isShowing;
        if (slotIsFree || frameTaken) {  // nothing to wait for, or a second loop waits already
            co_return;
        }
        frameTaken = taken;
    }
    const AtEnd forget([this, &taken] {
        const std::lock_guard lock(frameMutex);
        if (frameTaken == taken) {
            frameTaken.reset();
        }
    });
    launch("waiting for the engine to take a picture", setAfter(longestHold, taken));
    co_await *taken;
}

void UwpWebView3D::reportCaptureFailure(const std::string& text) {
    if (!destroyed && text != lastCaptureFailure) {
        logError(log_texts::captureFailed + text);
        lastCaptureFailure = text;
    }
}
