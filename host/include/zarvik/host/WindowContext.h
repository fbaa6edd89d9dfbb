#pragma once

#include <atomic>
#include <string>

#include "zarvik/host/GLContext.h"

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

    /// Waits for events, at most for this time. False once the user has closed the window. Main thread.
    bool handleEvents(double timeoutSeconds);

    void makeCurrent() override;
    void release() override;
    void present() override;

    /// The drawing area in pixels. Any thread.
    Size framebufferSize() const;

  private:
    GLFWwindow* window = nullptr;
    std::atomic<int> framebufferWidth = 0;
    std::atomic<int> framebufferHeight = 0;
};

}  // namespace zarvik::host
