// Actions as the lines of a recording.

#include <array>
#include <charconv>
#include <nlohmann/json.hpp>

#include "Step.h"

namespace zarvik::player {

namespace {

using namespace steps;

std::string toText(double number) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

std::string toText(Point point) {
    return toText(point.x) + " " + toText(point.y);
}

std::string toText(host::Size size) {
    return std::to_string(size.width) + " " + std::to_string(size.height);
}

std::string toText(const Place& place) {
    if (const auto* window = std::get_if<WindowPoint>(&place)) {
        return toText(window->point);
    }
    if (const auto* page = std::get_if<PagePoint>(&place)) {
        return "page " + toText(page->point);
    }
    return std::get<Element>(place).selector;
}

std::string quotedIfNeeded(const std::string& text) {
    const bool plain = !text.empty() && text.front() != '"' &&
                       text.find_first_of("\r\n") == std::string::npos && text.find_first_of(" \t") != 0 &&
                       text.find_last_of(" \t") != text.size() - 1;
    return plain ? text : nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

const char* prefixOf(Button button) {
    return button == Button::right ? "right " : button == Button::middle ? "middle " : "";
}

template <typename Event>
std::string buttonEvent(const char* word, const Event& event) {
    return word + std::string(" ") + prefixOf(event.button) + (event.clickCount == 2 ? "double " : "") +
           toText(event.place);
}

struct Writer {
    std::string operator()(const Open& step) const { return "open " + step.page; }
    std::string operator()(const Load& step) const { return "load " + step.page; }
    std::string operator()(const Back&) const { return "back"; }
    std::string operator()(const Forward&) const { return "forward"; }
    std::string operator()(const Reload&) const { return "reload"; }
    std::string operator()(const Stop&) const { return "stop"; }
    std::string operator()(const SelectView& step) const { return "view " + std::to_string(step.number); }
    std::string operator()(const ResizePage& step) const { return "resize " + toText(step.size); }
    std::string operator()(const Move& step) const { return "move " + toText(step.place); }
    std::string operator()(const Press& step) const { return buttonEvent("press", step); }
    std::string operator()(const Release& step) const { return buttonEvent("release", step); }
    std::string operator()(const Click& step) const {
        const char* word = step.twice                      ? "double-click "
                           : step.button == Button::right  ? "right-click "
                           : step.button == Button::middle ? "middle-click "
                                                           : "click ";
        return word + toText(step.place);
    }
    std::string operator()(const Drag& step) const {
        return "drag " + toText(step.from) + " to " + toText(step.to);
    }
    std::string operator()(const Scroll& step) const {
        return "scroll " + toText(step.delta) + (step.hasPlace ? " at " + toText(step.place) : "");
    }
    std::string operator()(const Type& step) const { return "type " + quotedIfNeeded(step.text); }
    std::string operator()(const Key& step) const { return "key " + step.name; }
    std::string operator()(const ResizeWindow& step) const { return "window " + toText(step.size); }
    std::string operator()(const MoveCamera& step) const {
        return "camera " + toText(step.yaw) + " " + toText(step.pitch) + " " + toText(step.distance);
    }
    std::string operator()(const ResetCamera&) const { return "camera reset"; }
};

}  // namespace

std::string toText(const Action& action) {
    return std::visit(Writer(), action);
}

}  // namespace zarvik::player
