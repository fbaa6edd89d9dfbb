#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "zarvik/host/Engine.h"
#include "zarvik/host/GLContext.h"
#include "zarvik/host/Image.h"
#include "zarvik/host/Recorder.h"

namespace zarvik::host {

struct LoadResult {
    enum class Outcome { finished, failed, timedOut };
    Outcome outcome = Outcome::timedOut;
    std::string reason;                            // of a failed load
    std::chrono::steady_clock::time_point time{};  // when its end was reported

    explicit operator bool() const { return outcome == Outcome::finished; }
};

/// An offscreen web view of the engine, from creation to destruction. Its functions may be called on any
/// thread except where they say otherwise; what waits must not be called on the render thread or in an
/// observer.
class View {
  public:
    /// Without a name, which must be unique in this process, it gets one. Throws std::runtime_error if the
    /// plug-in makes no web view.
    View(Engine& engine, Size size, bool alwaysCapturePreview = false, std::string name = {});
    ~View();
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    UwpWebView* handle() const { return instance; }
    /// The name under which the plug-in sends messages of this view.
    const std::string& target() const { return targetName; }
    /// The key that the render callback gets.
    std::int32_t key() const { return depositKey; }

    void loadUrl(const std::string& url);
    void loadHtml(const std::string& html);
    /// Waits for the end of the load that was started last with the functions above.
    LoadResult waitForLoad(std::chrono::milliseconds timeout = Recorder::defaultTimeout) const;

    /// A script that was started, and by which its result is known.
    struct Evaluation {
        std::string prefix;
        std::size_t from = 0;
    };
    Evaluation evaluation(const std::string& script) const;
    /// The script's result as text; nothing after the timeout.
    std::optional<std::string> resultOf(const Evaluation& evaluation,
                                        std::chrono::milliseconds timeout = Recorder::defaultTimeout) const;
    std::optional<std::string> evaluate(const std::string& script,
                                        std::chrono::milliseconds timeout = Recorder::defaultTimeout) const {
        return resultOf(evaluation(script), timeout);
    }

    /// The next host message of this view with this method at or after a position of the recorder.
    std::optional<Record> waitForMessage(const std::string& method, std::size_t from = 0,
                                         std::chrono::milliseconds timeout = Recorder::defaultTimeout) const;

    /// How many frames the plug-in has written into this view's textures, and how many textures it announced.
    std::uint64_t uploads() const;
    std::uint64_t announcements() const { return announcementCount; }
    bool waitForUploads(std::uint64_t atLeast,
                        std::chrono::milliseconds timeout = Recorder::defaultTimeout) const;

    /// Waits until the page, loaded at `since`, looks finished: a frame is there, and none has come for a
    /// while. A page that keeps moving is taken as it is after some seconds. False if it does not look
    /// finished before the timeout.
    bool waitUntilPainted(std::chrono::steady_clock::time_point since,
                          std::chrono::milliseconds timeout) const;

    /// What the texture holds, as the engine sees it; empty before the first announcement.
    Image readPixels() const;
    /// The same for drawing; 0 before the first announcement. Render thread.
    unsigned glTexture() const;

  private:
    friend class Engine;

    /// Our own reference to a view of a texture. The plug-in's own goes with WebView_destroyTexture.
    struct Release {
        void operator()(ID3D11ShaderResourceView* view) const;
    };
    using TextureReference = std::unique_ptr<ID3D11ShaderResourceView, Release>;

    // Render thread, called by the engine.
    void changeTexture(const std::string& address);
    void releaseReplacedTextures();

    struct UploadState {
        std::uint64_t count = 0;
        std::chrono::steady_clock::time_point last;
    };
    UploadState uploadState() const;

    Engine& engine;
    const std::string targetName;
    UwpWebView* const instance;
    const std::int32_t depositKey;

    std::atomic<std::size_t> loadPosition = 0;
    std::atomic<std::uint64_t> announcementCount = 0;

    mutable std::mutex mutex;  // guards the two below; only the render thread changes them
    TextureReference texture;
    std::uint64_t earlierUploads = 0;

    std::vector<TextureReference> replacedTextures;  // render thread
};

}  // namespace zarvik::host
