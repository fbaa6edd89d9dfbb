#include "zarvik/host/WindowContext.h"

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <stdexcept>

namespace zarvik::host {

namespace {

[[noreturn]] void fail() {
    const char* reason = nullptr;
    glfwGetError(&reason);
    const std::string message = std::string("No window: ") + (reason ? reason : "unknown reason");
    glfwTerminate();
    throw std::runtime_error(message);
}

}  // namespace

WindowContext::WindowContext(const std::string& title, Size size) {
    if (!glfwInit()) {
        fail();
    }
    glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3);
    glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
    glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
    glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
    window = glfwCreateWindow(size.width, size.height, title.c_str(), nullptr, nullptr);
    if (!window) {
        fail();
    }
    int width = 0;
    int height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    framebufferWidth = width;
    framebufferHeight = height;
    glfwSetWindowUserPointer(window, this);
    glfwSetFramebufferSizeCallback(window, [](GLFWwindow* changed, int newWidth, int newHeight) {
        auto* self = static_cast<WindowContext*>(glfwGetWindowUserPointer(changed));
        self->framebufferWidth = newWidth;
        self->framebufferHeight = newHeight;
    });
}

WindowContext::~WindowContext() {
    glfwDestroyWindow(window);
    glfwTerminate();
}

bool WindowContext::handleEvents(double timeoutSeconds) {
    glfwWaitEventsTimeout(timeoutSeconds);
    return !glfwWindowShouldClose(window);
}

void WindowContext::makeCurrent() {
    glfwMakeContextCurrent(window);
    // The render thread has its own clock; waiting for the display as well would delay its other work.
    glfwSwapInterval(0);
}

void WindowContext::release() {
    glfwMakeContextCurrent(nullptr);
}

void WindowContext::present() {
    glfwSwapBuffers(window);
}

Size WindowContext::framebufferSize() const {
    return {.width = framebufferWidth, .height = framebufferHeight};
}

}  // namespace zarvik::host
