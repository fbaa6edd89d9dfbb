#pragma once

namespace zarvik::host {

struct Size {
    int width = 0;
    int height = 0;
};

/// The OpenGL 3.3 core context of the render thread. Made on any thread, then given to the render thread,
/// which alone makes it current.
class GLContext {
  public:
    GLContext() = default;
    virtual ~GLContext() = default;
    GLContext(const GLContext&) = delete;
    GLContext& operator=(const GLContext&) = delete;

    virtual void makeCurrent() = 0;
    virtual void release() = 0;

    /// Shows what was drawn, if there is anything to show it on.
    virtual void present() = 0;
};

}  // namespace zarvik::host
