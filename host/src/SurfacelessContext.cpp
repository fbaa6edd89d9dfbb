#include "zarvik/host/SurfacelessContext.h"

#include <epoxy/egl.h>

#include <array>
#include <span>
#include <stdexcept>
#include <string>

namespace zarvik::host {

namespace {

[[noreturn]] void fail(const char* step) {
    throw std::runtime_error(std::string("No OpenGL context: ") + step + " failed with EGL error " +
                             std::to_string(eglGetError()) + ".");
}

/// The display of the first graphics device that opens; software rendering is the last in the list.
///
/// Mesa's surfaceless platform would be simpler, but its one display belongs to the whole process, and WebKit
/// in the plug-in opens and terminates it for a probe. Nobody else uses a device's display. It stays open,
/// since closing it would pull it away from other contexts.
EGLDisplay openDisplay() {
    std::array<EGLDeviceEXT, 16> devices{};
    EGLint count = 0;
    if (!eglQueryDevicesEXT(devices.size(), devices.data(), &count)) {
        fail("eglQueryDevicesEXT");
    }
    for (EGLDeviceEXT device : std::span(devices).first(static_cast<std::size_t>(count))) {
        EGLDisplay display = eglGetPlatformDisplayEXT(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
        if (display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr)) {
            return display;
        }
    }
    fail("eglInitialize");
}

EGLContext createContext(EGLDisplay display) {
    if (!eglBindAPI(EGL_OPENGL_API)) {
        fail("eglBindAPI");
    }
    constexpr std::array<EGLint, 5> wanted{EGL_SURFACE_TYPE, 0, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                           EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(display, wanted.data(), &config, 1, &count) || count == 0) {
        fail("eglChooseConfig");
    }
    constexpr std::array<EGLint, 7> version{EGL_CONTEXT_MAJOR_VERSION,
                                            3,
                                            EGL_CONTEXT_MINOR_VERSION,
                                            3,
                                            EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                            EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                            EGL_NONE};
    EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, version.data());
    if (context == EGL_NO_CONTEXT) {
        fail("eglCreateContext");
    }
    return context;
}

}  // namespace

SurfacelessContext::SurfacelessContext() : display(openDisplay()), context(createContext(display)) {}

SurfacelessContext::~SurfacelessContext() {
    eglDestroyContext(display, context);
}

void SurfacelessContext::makeCurrent() {
    // The bound API is a property of the thread.
    if (!eglBindAPI(EGL_OPENGL_API) || !eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context)) {
        fail("eglMakeCurrent");
    }
}

void SurfacelessContext::release() {
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglReleaseThread();
}

}  // namespace zarvik::host
