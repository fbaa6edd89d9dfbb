#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "Session.h"
#include "zarvik/host/WindowEvent.h"

namespace zarvik::player {

/// What mouse and keyboard mean: actions in the session, or another view of the scene. Main thread.
class WindowInput {
  public:
    WindowInput(Session& session, std::function<std::string()> clipboard)
        : session(session), clipboard(std::move(clipboard)) {}

    void handle(const host::WindowEvent& event);

  private:
    using Clock = std::chrono::steady_clock;

    void press(const host::WindowEvent& event);
    void release(const host::WindowEvent& event);
    void move(const host::WindowEvent& event);
    void turnWheel(const host::WindowEvent& event);
    void pressKey(const host::WindowEvent& event);
    void zoom(double factor);
    /// Counts presses that follow each other quickly at one place: 1, 2, 1, 2...
    int countClick(const host::WindowEvent& event);

    /// A drag that moves the camera, once the pointer has left the place where it began.
    struct Orbit {
        host::WindowEvent begin;
        Camera camera;
        bool moved = false;
    };

    Session& session;
    const std::function<std::string()> clipboard;
    std::optional<Orbit> orbit;
    host::WindowEvent lastPress;
    Clock::time_point lastPressTime{};
    int clickCount = 1;
};

}  // namespace zarvik::player
