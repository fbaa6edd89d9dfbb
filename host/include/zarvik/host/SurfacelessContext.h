#pragma once

#include <memory>

#include "zarvik/host/GLContext.h"

namespace zarvik::host {

/// A context without a window system, on an EGL device: drawing goes to framebuffer objects.
class SurfacelessContext final : public GLContext {
  public:
    /// Throws std::runtime_error if the machine has no such EGL or no OpenGL 3.3.
    SurfacelessContext();
    ~SurfacelessContext() override;
    SurfacelessContext(const SurfacelessContext&) = delete;
    SurfacelessContext& operator=(const SurfacelessContext&) = delete;

    void makeCurrent() override;
    void release() override;
    void present() override {}

  private:
    // EGLDisplay and EGLContext.
    void* const display;
    void* const context;
};

}  // namespace zarvik::host
