#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <vector>

#include "zarvik/host/GLContext.h"
#include "zarvik/host/GLDevice.h"
#include "zarvik/host/Plugin.h"
#include "zarvik/host/Recorder.h"
#include "zarvik/host/RenderThread.h"

namespace zarvik::host {

class View;

/// A small game engine around the plug-in: the graphics device, the render thread, and the receiving end of
/// the plug-in's callbacks. One at a time per process, since those callbacks carry no context. The thread
/// that makes it is the scripting thread.
class Engine {
  public:
    struct Options {
        std::filesystem::path library = Plugin::defaultPath();
        double turnsPerSecond = 60;  // 0: only takeTurn() renders
        /// Must outlive the engine. Null: an offscreen context of its own.
        GLContext* context = nullptr;
        /// See Recorder::setObserver.
        std::function<void(const Record&)> observer{};
    };

    /// Throws std::runtime_error if the library or OpenGL cannot be had.
    explicit Engine(Options options);
    /// All views must be gone.
    ~Engine();
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    const PluginExports& plugin() const { return library.exports; }
    GLDevice& device() { return glDevice; }
    Recorder& recorder() const;
    RenderThread& renderThread() { return *thread; }

    /// Renders once, now, and waits for it. Any thread.
    void takeTurn() { thread->takeTurn(); }

    /// What the render thread draws at the end of each turn. If it returns true, there is something new,
    /// which is then presented. Null: nothing is drawn. Any thread.
    void setDrawing(std::function<bool()> draw);

  private:
    friend class View;
    struct Inbox;

    // A view that is attached is rendered in every turn, and learns of its textures. Any thread.
    void attach(View& view);
    void detach(View& view);

    void registerCallbacks();
    void turn();

    const Plugin library;
    const std::shared_ptr<Inbox> inbox;
    const ZarvikRenderFunction render;
    GLDevice glDevice;
    const std::unique_ptr<GLContext> ownContext;

    // Render thread only.
    GLContext& context;
    std::vector<View*> views;
    std::function<bool()> drawing;

    std::unique_ptr<RenderThread> thread;
};

}  // namespace zarvik::host
