#include "offscreen/UwpWebView3D.h"

#include <algorithm>

#include "webview/Numbers.h"

using winrt::Windows::UI::ViewManagement::ApplicationView;

namespace {

/// Far to the right of anything visible.
constexpr std::int32_t offscreenX = 10000;

constexpr float zoomStep = 0.1F;
constexpr float lowestZoomFactor = 0.1F;

std::int32_t zoomed(std::int32_t value, float zoomFactor) {
    return truncate(zoomFactor * static_cast<float>(value));
}

}  // namespace

UwpWebView3D::UwpWebView3D(std::string messageTargetName, std::int32_t width, std::int32_t height,
                           bool alwaysCapturePreview)
    : UwpWebView(std::move(messageTargetName)),
      alwaysCapturePreview(alwaysCapturePreview),
      width(width),
      height(height) {}

void UwpWebView3D::start() {
    UwpWebView::start(offscreenX, 0, width, height);
    postControlStep(*this, "start", [](UwpWebView3D& view) {
        view.visibleBounds = ApplicationView::GetForCurrentView().VisibleBounds();
        view.applySize();
    });
}

void UwpWebView3D::resize(std::int32_t newWidth, std::int32_t newHeight) {
    postControlStep(*this, "resize", [newWidth, newHeight](UwpWebView3D& view) {
        view.width = newWidth;
        view.height = newHeight;
        view.applySize();
    });
}

// The control stays off the screen.
void UwpWebView3D::setRect(std::int32_t, std::int32_t, std::int32_t, std::int32_t) {}
void UwpWebView3D::setVisible(bool) {}

void UwpWebView3D::setRenderingEnabled(bool enabled) {
    if (renderingEnabled.exchange(enabled) || !enabled) {
        return;
    }
    try {
        postControlStep(*this, "setRenderingEnabled", [](UwpWebView3D& view) { view.startCaptureLoop(); });
    } catch (...) {
        // So that the next attempt is one.
        renderingEnabled = false;
        throw;
    }
}

void UwpWebView3D::zoomIn() {
    zoomBy(-zoomStep);
}

void UwpWebView3D::zoomOut() {
    zoomBy(zoomStep);
}

void UwpWebView3D::zoomBy(float step) {
    float current = zoomFactor;
    while (!zoomFactor.compare_exchange_weak(current, std::max(current + step, lowestZoomFactor))) {
    }
    postApplySize();
}

std::int32_t UwpWebView3D::scale(std::int32_t value) const {
    return zoomed(value, zoomFactor);
}

std::int32_t UwpWebView3D::getHeight() const {
    return scaledHeight;
}

std::int32_t UwpWebView3D::getWidth() const {
    return scaledWidth;
}

void UwpWebView3D::domContentLoadedStep() {
    UwpWebView::domContentLoadedStep();
    // A loop that runs already serves the next page too.
    if (captureLoopsRunning == 0) {
        startCaptureLoop();
    }
}

foundation::IAsyncAction UwpWebView3D::teardown() {
    const auto self = shared_from_this();
    if (captureLoopsRunning > 0) {
        co_await loopStopped;
    }
    co_await UwpWebView::teardown();
}

bool UwpWebView3D::usesBitmapCapture() const {
    return !alwaysCapturePreview;
}

void UwpWebView3D::postApplySize() {
    postControlStep(*this, "resize", [](UwpWebView3D& view) { view.applySize(); });
}

void UwpWebView3D::applySize() {
    const float factor = zoomFactor;
    scaledWidth = zoomed(width, factor);
    scaledHeight = zoomed(height, factor);
    webView.Width(scaledWidth);
    webView.Height(scaledHeight);

    EngineTexture made = createEngineTexture(scaledWidth, scaledHeight);
    if (!made.texture) {
        return;
    }
    {
        // The references replaced leave with `made`, after unlocking. A view that was never announced is
        // then gone; an announced one is the engine's.
        const std::lock_guard lock(textureMutex);
        std::swap(texture, made.texture);
        std::swap(textureToAnnounce, made.view);
    }
    publishUnchanged = true;
}
