#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include "Geometry.h"
#include "zarvik/host/GLContext.h"

namespace zarvik::player {

/// What a step points at.
struct WindowPoint {
    Point point;
    bool operator==(const WindowPoint&) const = default;
};
struct PagePoint {  // in pixels of the current page
    Point point;
    bool operator==(const PagePoint&) const = default;
};
struct Element {  // the middle of what a CSS selector finds in the current page
    std::string selector;
    std::optional<Point> middle{};  // in pixels of the page, once it was looked up
    bool operator==(const Element&) const = default;
};
using Place = std::variant<WindowPoint, PagePoint, Element>;

/// The numbers that the plug-in takes.
enum class Button { left = 0, right = 1, middle = 2 };

/// Everything that the player can be told to do, by a script as well as by mouse and keyboard.
namespace steps {

// Pages
struct Open {
    std::string page;
};
struct Load {
    std::string page;
};
struct Back {};
struct Forward {};
struct Reload {};
struct Stop {};
struct SelectView {
    int number = 1;
};
struct ResizePage {
    host::Size size;
};

// Input
struct Move {
    Place place;
};
struct Press {
    Place place;
    Button button = Button::left;
    int clickCount = 1;
};
struct Release {
    Place place;
    Button button = Button::left;
    int clickCount = 1;
};
struct Click {
    Place place;
    Button button = Button::left;
    bool twice = false;
};
struct Drag {
    Place from;
    Place to;
};
struct Scroll {
    Point delta;
    bool hasPlace = false;
    Place place{};
};
struct Type {
    std::string text;
};
struct Key {
    std::string name;
};

// The player itself
struct ResizeWindow {
    host::Size size;
};
struct MoveCamera {
    double yaw = 0;  // degrees
    double pitch = 0;
    double distance = 0;
};
struct ResetCamera {};
struct Screenshot {
    std::string file;
};
struct Print {
    std::string expression;
};

// Waiting
struct Wait {
    double seconds = 0;
};
struct WaitForLoad {
    bool success = true;
    int view = 0;  // 0: the current one
};
struct WaitForPaint {};
struct WaitForText {
    std::string text;
};
struct WaitForElement {
    std::string selector;
};
struct WaitForTruth {
    std::string expression;
};
struct Timeout {
    double seconds = 30;
};

}  // namespace steps

/// What changes pages or scene. The session performs these, and records them.
using Action = std::variant<steps::Open, steps::Load, steps::Back, steps::Forward, steps::Reload, steps::Stop,
                            steps::SelectView, steps::ResizePage, steps::Move, steps::Press, steps::Release,
                            steps::Click, steps::Drag, steps::Scroll, steps::Type, steps::Key,
                            steps::ResizeWindow, steps::MoveCamera, steps::ResetCamera>;

/// What looks and waits. Only scripts have these.
using Check =
    std::variant<steps::Screenshot, steps::Print, steps::Wait, steps::WaitForLoad, steps::WaitForPaint,
                 steps::WaitForText, steps::WaitForElement, steps::WaitForTruth, steps::Timeout>;

using Step = std::variant<Action, Check>;

/// Reads one line of a script that is neither empty nor a comment. Throws std::invalid_argument with what is
/// wrong with it.
Step parseStep(std::string_view line);

/// The line that parseStep() reads as this action.
std::string toText(const Action& action);

}  // namespace zarvik::player
