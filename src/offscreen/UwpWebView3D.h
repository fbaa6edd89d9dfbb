#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "offscreen/CompletionEvent.h"
#include "offscreen/EngineTexture.h"
#include "offscreen/FrameTimer.h"
#include "offscreen/PixelFrame.h"
#include "webview/UwpWebView.h"

/// A web view in the engine's 3D scene. Its control is laid out off the visible screen; the capture loop on
/// the UI thread takes picture after picture of it and leaves the newest one in a single slot, from which the
/// render thread uploads it into the engine's texture.
///
/// The two threads share pendingFrame, isShowing and frameTaken under frameMutex, and texture with
/// textureToAnnounce under textureMutex. Neither mutex is held while the other is taken, while a host message
/// is sent or while a picture is freed.
class UwpWebView3D : public UwpWebView {
  public:
    UwpWebView3D(std::string messageTargetName, std::int32_t width, std::int32_t height,
                 bool alwaysCapturePreview);

    void render() override;
    void resize(std::int32_t width, std::int32_t height) override;
    void setRect(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) override;
    void setRenderingEnabled(bool enabled) override;
    void setVisible(bool visible) override;
    void zoomIn() override;
    void zoomOut() override;
    std::int32_t scale(std::int32_t value) const override;
    std::int32_t getHeight() const override;
    std::int32_t getWidth() const override;
    void domContentLoadedStep() override;
    foundation::IAsyncAction teardown() override;
    bool usesBitmapCapture() const override;

    /// Posts the making of the control and of its texture; called once, before anything else.
    void start();

  private:
    // UI thread.
    void applySize();
    void postApplySize();
    void zoomBy(float step);
    void startCaptureLoop();
    foundation::IAsyncAction captureLoop();
    foundation::IAsyncAction captureFrame();
    foundation::IAsyncAction captureBitmap();
    foundation::IAsyncAction capturePreview();
    foundation::IAsyncAction publishFrame(std::shared_ptr<const PixelFrame> frame);
    foundation::IAsyncAction untilFrameTaken();
    void reportCaptureFailure(const std::string& text);

    /// Render thread: brings the frame into the texture, which the engine hears of if it is new.
    void show(const PixelFrame& frame);
    /// Render thread: copies the frame into the texture and returns the result of mapping it. textureMutex is
    /// held.
    HRESULT upload(const PixelFrame& frame, ID3D11DeviceContext& context);

    const bool alwaysCapturePreview;
    /// Scales the logical viewport, so that zooming in lowers it.
    std::atomic<float> zoomFactor{1.0F};
    std::atomic<bool> renderingEnabled{true};

    // UI thread.
    /// The size that the engine wants, and the page's, which is that one zoomed.
    std::int32_t width;
    std::int32_t height;
    std::int32_t scaledWidth = 0;
    std::int32_t scaledHeight = 0;
    std::int32_t captureLoopsRunning = 0;
    /// Happens when the last capture loop has ended because the view is being destroyed.
    CompletionEvent loopStopped;
    FrameTimer frameTimer;
    foundation::Rect visibleBounds{};
    std::string lastCaptureFailure;
    /// The last picture published. Keeping it alive makes an unchanged picture, which the platform hands out
    /// as the same memory again, recognisable.
    std::shared_ptr<const PixelFrame> publishedFrame;

    /// Set when the next picture must be uploaded even if it is unchanged: the texture is new, or the last
    /// upload failed.
    std::atomic<bool> publishUnchanged{false};

    std::mutex frameMutex;
    /// The newest frame that is not yet uploaded.
    std::shared_ptr<const PixelFrame> pendingFrame;
    /// Whether the render thread is at work with a frame that was pending.
    bool isShowing = false;
    /// Set on the UI thread when the render thread is done with a frame, if a newer one waits for that.
    std::shared_ptr<CompletionEvent> frameTaken;

    std::mutex textureMutex;
    winrt::com_ptr<ID3D11Texture2D> texture;
    /// A new texture's view that the engine has not been told of, with the reference that the engine will
    /// own.
    winrt::com_ptr<ID3D11ShaderResourceView> textureToAnnounce;
};

/// Whether a picture of this size is taken by the bitmap path: it serves no more than 4096 pixels either way,
/// and nothing larger than the window.
bool fitsBitmapCapture(std::int32_t width, std::int32_t height, const foundation::Rect& visibleBounds);
