#pragma once

#include <atomic>
#include <string>
#include <vector>

#include "zarvik/host/GLContext.h"
#include "zarvik/host/WindowEvent.h"

struct GLFWwindow;

namespace zarvik::host {

/// A window on the desktop and the context that draws in it. The main thread makes and destroys it and
/// handles its events, as window systems demand; the render thread draws and presents.
class WindowContext final : public GLContext {
  public:
    /// Throws std::runtime_error if there is no display, or no OpenGL 3.3 on it.
    WindowContext(const std::string& title, Size size);
    ~WindowContext() override;
    WindowContext(const WindowContext&) = delete;
    WindowContext& operator=(const WindowContext&) = delete;

    /// Waits for events, at most for this time, and returns what the user did since the last call. Main
    /// thread; so are the three below.
    std::vector<WindowEvent> takeEvents(double timeoutSeconds);
    bool closed() const;
    void resize(Size size);
    std::string clipboardText() const;

    void makeCurrent() override;
    void release() override;
    void present() override;

    /// The drawing area in pixels. Any thread.
    Size framebufferSize() const;

  private:
    void listen();
    void movePointer(double x, double y);
    /// An event at the place where the pointer is.
    WindowEvent& add(WindowEvent::Kind kind);

    GLFWwindow* window = nullptr;
    std::atomic<int> framebufferWidth = 0;
    std::atomic<int> framebufferHeight = 0;
    std::vector<WindowEvent> events;  // main thread; so are the two below
    double pointerX = 0;
    double pointerY = 0;
};

}  // namespace zarvik::host
