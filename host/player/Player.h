#pragma once

#include <chrono>
#include <memory>
#include <stdexcept>
#include <vector>

#include "Options.h"
#include "RecordPrinter.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/Scene.h"
#include "zarvik/host/View.h"

namespace zarvik::player {

/// The user pressed Ctrl-C.
struct Interrupted : std::runtime_error {
    Interrupted() : std::runtime_error("Interrupted.") {}
};

/// Loads the pages and draws them, side by side. Throws std::runtime_error with the reason of a failure.
class Player {
  public:
    explicit Player(Options options);

    /// Until the picture is written.
    void runHeadless();
    /// Until the window is closed.
    void runInWindow();

    /// Makes the waiting functions throw Interrupted soon. Signal handlers may call it.
    static void interrupt();

  private:
    using Views = std::vector<std::unique_ptr<host::View>>;

    host::Engine::Options engineOptions(host::GLContext* context) const;
    Views createViews(host::Engine& engine) const;
    void waitUntilLoaded(const host::View& view, std::chrono::steady_clock::time_point deadline) const;

    host::Size sceneSize() const;
    /// Render thread.
    std::vector<host::Scene::Surface> surfaces(const Views& views) const;

    const Options options;
    const RecordPrinter printer;
};

}  // namespace zarvik::player
