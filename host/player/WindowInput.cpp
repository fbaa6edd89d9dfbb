#include "WindowInput.h"

#include <cmath>

#include "Keys.h"

namespace zarvik::player {

namespace {

using host::WindowEvent;

constexpr double pixelsPerNotch = 100;  // of scrolling
constexpr double zoomPerNotch = 1.1;
constexpr double degreesPerPixel = 0.25;
constexpr double dragThreshold = 4;
constexpr std::chrono::milliseconds doubleClickTime{400};

WindowPoint placeOf(const WindowEvent& event) {
    return {{event.x, event.y}};
}

double distance(const WindowEvent& a, const WindowEvent& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

void WindowInput::handle(const WindowEvent& event) {
    switch (event.kind) {
        case WindowEvent::Kind::pointerMoved:
            move(event);
            break;
        case WindowEvent::Kind::pointerLeft:
            session.perform(steps::Move{WindowPoint{{-1, -1}}});  // beside everything
            break;
        case WindowEvent::Kind::buttonPressed:
            press(event);
            break;
        case WindowEvent::Kind::buttonReleased:
            release(event);
            break;
        case WindowEvent::Kind::wheelTurned:
            turnWheel(event);
            break;
        case WindowEvent::Kind::keyPressed:
            pressKey(event);
            break;
        case WindowEvent::Kind::uncovered:
            session.redraw();
            break;
        case WindowEvent::Kind::textTyped:
            session.perform(steps::Type{event.text});
            break;
    }
}

int WindowInput::countClick(const WindowEvent& event) {
    const auto now = Clock::now();
    const bool again = clickCount == 1 && now - lastPressTime <= doubleClickTime &&
                       event.button == lastPress.button && distance(event, lastPress) <= dragThreshold;
    clickCount = again ? 2 : 1;
    lastPress = event;
    lastPressTime = now;
    return clickCount;
}

void WindowInput::press(const WindowEvent& event) {
    const bool onPage = session.isOverPage({event.x, event.y});
    if (event.button == static_cast<int>(Button::right) || event.alt || !onPage) {
        orbit = Orbit{.begin = event, .camera = session.camera()};
        return;
    }
    session.perform(steps::Press{.place = placeOf(event),
                                 .button = static_cast<Button>(event.button),
                                 .clickCount = countClick(event)});
}

void WindowInput::release(const WindowEvent& event) {
    if (orbit && orbit->begin.button == event.button) {
        // A right button that was not dragged is the page's.
        if (!orbit->moved && event.button == static_cast<int>(Button::right)) {
            session.perform(steps::Click{.place = placeOf(event), .button = Button::right});
        }
        orbit.reset();
        return;
    }
    session.perform(steps::Release{
        .place = placeOf(event), .button = static_cast<Button>(event.button), .clickCount = clickCount});
}

void WindowInput::move(const WindowEvent& event) {
    if (!orbit) {
        session.perform(steps::Move{placeOf(event)});
        return;
    }
    orbit->moved = orbit->moved || distance(event, orbit->begin) > dragThreshold;
    if (orbit->moved) {
        session.perform(
            steps::MoveCamera{.yaw = orbit->camera.yaw - (event.x - orbit->begin.x) * degreesPerPixel,
                              .pitch = orbit->camera.pitch + (event.y - orbit->begin.y) * degreesPerPixel,
                              .distance = orbit->camera.distance});
    }
}

void WindowInput::turnWheel(const WindowEvent& event) {
    if (event.control || !session.isOverPage({event.x, event.y})) {
        zoom(std::pow(zoomPerNotch, event.wheelY));
        return;
    }
    session.perform(steps::Scroll{// Scripts have whole pixels, and no negative zero.
                                  .delta = {std::round(event.wheelX * pixelsPerNotch) + 0.0,
                                            std::round(event.wheelY * pixelsPerNotch) + 0.0},
                                  .hasPlace = true,
                                  .place = placeOf(event)});
}

void WindowInput::zoom(double factor) {
    const Camera& camera = session.camera();
    session.perform(
        steps::MoveCamera{.yaw = camera.yaw, .pitch = camera.pitch, .distance = camera.distance * factor});
}

void WindowInput::pressKey(const WindowEvent& event) {
    if (event.key == "Escape") {
        session.leaveAddress();
    } else if (event.key == "F5" || (event.control && event.key == "r")) {
        session.perform(steps::Reload{});
    } else if (event.control && event.key == "l") {
        session.editAddress();
    } else if (event.control && event.key == "v") {
        session.perform(steps::Type{clipboard()});
    } else if (event.alt && event.key == "ArrowLeft") {
        session.perform(steps::Back{});
    } else if (event.alt && event.key == "ArrowRight") {
        session.perform(steps::Forward{});
    } else if (event.key == "Home" && event.control) {
        session.perform(steps::ResetCamera{});
    } else if (isKeyName(event.key) && !event.control && !event.alt) {
        session.perform(steps::Key{event.key});
    }
}

}  // namespace zarvik::player
