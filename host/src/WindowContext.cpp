#include "zarvik/host/WindowContext.h"

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <utility>

namespace zarvik::host {

namespace {

[[noreturn]] void fail() {
    const char* reason = nullptr;
    glfwGetError(&reason);
    const std::string message = std::string("No window: ") + (reason ? reason : "unknown reason");
    glfwTerminate();
    throw std::runtime_error(message);
}

WindowContext& contextOf(GLFWwindow* window) {
    return *static_cast<WindowContext*>(glfwGetWindowUserPointer(window));
}

struct NamedKey {
    int key;
    const char* name;
};

constexpr std::array namedKeys{
    NamedKey{GLFW_KEY_ENTER, "Enter"},         NamedKey{GLFW_KEY_KP_ENTER, "Enter"},
    NamedKey{GLFW_KEY_BACKSPACE, "Backspace"}, NamedKey{GLFW_KEY_LEFT, "ArrowLeft"},
    NamedKey{GLFW_KEY_RIGHT, "ArrowRight"},    NamedKey{GLFW_KEY_UP, "ArrowUp"},
    NamedKey{GLFW_KEY_DOWN, "ArrowDown"},      NamedKey{GLFW_KEY_ESCAPE, "Escape"},
    NamedKey{GLFW_KEY_HOME, "Home"},           NamedKey{GLFW_KEY_F5, "F5"},
};

std::string nameOf(int key, int scancode) {
    const auto found = std::ranges::find(namedKeys, key, &NamedKey::key);
    if (found != namedKeys.end()) {
        return found->name;
    }
    const char* letter = glfwGetKeyName(key, scancode);
    return letter ? letter : "";
}

std::string toUtf8(unsigned character) {
    const auto tail = [](unsigned bits) { return static_cast<char>(0x80U | (bits & 0x3FU)); };
    if (character < 0x80) {
        return {static_cast<char>(character)};
    }
    if (character < 0x800) {
        return {static_cast<char>(0xC0U | (character >> 6U)), tail(character)};
    }
    if (character < 0x10000) {
        return {static_cast<char>(0xE0U | (character >> 12U)), tail(character >> 6U), tail(character)};
    }
    return {static_cast<char>(0xF0U | (character >> 18U)), tail(character >> 12U), tail(character >> 6U),
            tail(character)};
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
    listen();
}

WindowContext::~WindowContext() {
    glfwDestroyWindow(window);
    glfwTerminate();
}

void WindowContext::listen() {
    using Kind = WindowEvent::Kind;
    glfwSetFramebufferSizeCallback(window, [](GLFWwindow* changed, int width, int height) {
        contextOf(changed).framebufferWidth = width;
        contextOf(changed).framebufferHeight = height;
    });
    glfwSetWindowRefreshCallback(window,
                                 [](GLFWwindow* uncovered) { contextOf(uncovered).add(Kind::uncovered); });
    glfwSetCursorPosCallback(window,
                             [](GLFWwindow* at, double x, double y) { contextOf(at).movePointer(x, y); });
    glfwSetCursorEnterCallback(window, [](GLFWwindow* at, int entered) {
        if (!entered) {
            contextOf(at).add(Kind::pointerLeft);
        }
    });
    glfwSetMouseButtonCallback(window, [](GLFWwindow* at, int button, int action, int modifiers) {
        if (button > GLFW_MOUSE_BUTTON_MIDDLE) {
            return;
        }
        auto& event = contextOf(at).add(action == GLFW_PRESS ? Kind::buttonPressed : Kind::buttonReleased);
        event.button = button;
        event.control = (modifiers & GLFW_MOD_CONTROL) != 0;
        event.alt = (modifiers & GLFW_MOD_ALT) != 0;
    });
    glfwSetScrollCallback(window, [](GLFWwindow* at, double x, double y) {
        auto& event = contextOf(at).add(Kind::wheelTurned);
        event.wheelX = -x;
        event.wheelY = -y;
        event.control = glfwGetKey(at, GLFW_KEY_LEFT_CONTROL) == GLFW_PRESS ||
                        glfwGetKey(at, GLFW_KEY_RIGHT_CONTROL) == GLFW_PRESS;
    });
    glfwSetKeyCallback(window, [](GLFWwindow* at, int key, int scancode, int action, int modifiers) {
        if (action == GLFW_RELEASE) {
            return;
        }
        auto& event = contextOf(at).add(Kind::keyPressed);
        event.key = nameOf(key, scancode);
        event.control = (modifiers & GLFW_MOD_CONTROL) != 0;
        event.alt = (modifiers & GLFW_MOD_ALT) != 0;
    });
    glfwSetCharCallback(window, [](GLFWwindow* at, unsigned character) {
        contextOf(at).add(Kind::textTyped).text = toUtf8(character);
    });
}

void WindowContext::movePointer(double x, double y) {
    // The window system counts in units of its own, which need not be pixels.
    int width = 0;
    int height = 0;
    glfwGetWindowSize(window, &width, &height);
    if (width > 0 && height > 0) {
        pointerX = x * framebufferWidth / width;
        pointerY = y * framebufferHeight / height;
        add(WindowEvent::Kind::pointerMoved);
    }
}

WindowEvent& WindowContext::add(WindowEvent::Kind kind) {
    return events.emplace_back(WindowEvent{.kind = kind, .x = pointerX, .y = pointerY});
}

std::vector<WindowEvent> WindowContext::takeEvents(double timeoutSeconds) {
    glfwWaitEventsTimeout(timeoutSeconds);
    return std::exchange(events, {});
}

bool WindowContext::closed() const {
    return glfwWindowShouldClose(window) != 0;
}

void WindowContext::resize(Size size) {
    glfwSetWindowSize(window, size.width, size.height);
}

std::string WindowContext::clipboardText() const {
    const char* text = glfwGetClipboardString(window);
    return text ? text : "";
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
