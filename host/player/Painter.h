#pragma once

#include <atomic>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>

#include "Renderer.h"
#include "Scenery.h"
#include "Statistics.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/WindowContext.h"

namespace zarvik::player {

/// Draws the scenery on the engine's render thread: continuously, whenever something in it has changed, or
/// only when somebody wants a picture.
class Painter {
  public:
    /// Where frames go that nobody asks for.
    enum class Frames { none, offscreen, window };

    Painter(host::Engine& engine, Statistics& statistics, Frames frames);
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    /// What to draw from now on. Its views must outlive the painter. Any thread.
    void show(Scenery scenery);

    /// Makes the next frame count as changed. Any thread.
    void redraw() { stale = true; }

    /// The picture of now. Any thread but the render thread.
    host::Image picture();

    /// Throws what a frame has failed with since the last call, if one has. Any thread but the render thread.
    void throwFailure();

  private:
    // Render thread.
    bool draw();
    std::optional<Renderer::Frame> currentFrame();

    host::Engine& engine;
    Statistics& statistics;
    const Frames frames;

    std::atomic<bool> stale = false;
    std::mutex mutex;  // guards the two below
    std::optional<Scenery> scenery;
    std::exception_ptr failure;

    // Render thread only.
    std::unique_ptr<Renderer> renderer;
    std::optional<Renderer::Frame> drawn;
};

}  // namespace zarvik::player
