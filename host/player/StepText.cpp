// The text of steps: one table says which words begin a line and how its rest is read.

#include <algorithm>
#include <array>
#include <charconv>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>
#include <utility>

#include "Keys.h"
#include "Step.h"
#include "zarvik/host/GLDevice.h"

namespace zarvik::player {

namespace {

using namespace steps;

[[noreturn]] void fail(const std::string& reason) {
    throw std::invalid_argument(reason);
}

/// What is left of a line, read from the front.
class Words {
  public:
    explicit Words(std::string_view line) : left(line) { skipBlanks(); }

    bool empty() const { return left.empty(); }

    std::string_view peek() const { return left.substr(0, left.find_first_of(blanks)); }

    std::string_view next(const char* what) {
        if (left.empty()) {
            fail(std::string(what) + " is missing");
        }
        const auto word = peek();
        left.remove_prefix(word.size());
        skipBlanks();
        return word;
    }

    bool take(std::string_view word) {
        const bool found = peek() == word;
        if (found) {
            next("");
        }
        return found;
    }

    double number(const char* what) {
        const auto word = next(what);
        const auto value = toNumber(word);
        return value ? *value
                     : (fail(std::string(what) + " is not a number: '" + std::string(word) + "'"), 0);
    }

    double positive(const char* what) {
        const double value = number(what);
        return value > 0 ? value : (fail(std::string(what) + " must be greater than 0"), 0);
    }

    int whole(const char* what, int least, int most) {
        const double value = number(what);
        if (value < least || value > most || value != static_cast<int>(value)) {
            fail(std::string(what) + " is not a whole number from " + std::to_string(least) + " to " +
                 std::to_string(most));
        }
        return static_cast<int>(value);
    }

    std::string rest(const char* what) {
        if (left.empty()) {
            fail(std::string(what) + " is missing");
        }
        return std::string(std::exchange(left, {}));
    }

    std::string_view upToLast(std::string_view separator, const char* what) {
        const auto end = left.rfind(separator);
        if (end == std::string_view::npos || end == 0) {
            fail(std::string(what) + " is missing");
        }
        const auto text = left.substr(0, end);
        left.remove_prefix(end + separator.size());
        skipBlanks();
        return text;
    }

    bool beginsWithNumber() const { return toNumber(peek()).has_value(); }

  private:
    static constexpr const char* blanks = " \t";

    static std::optional<double> toNumber(std::string_view word) {
        double value = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
        const bool valid = error == std::errc() && end == word.data() + word.size() && value == value &&
                           value < 1e9 && value > -1e9;
        return valid ? std::optional(value) : std::nullopt;
    }

    void skipBlanks() { left.remove_prefix(std::min(left.find_first_not_of(blanks), left.size())); }

    std::string_view left;
};

Place readPlace(Words& words) {
    if (words.beginsWithNumber()) {
        const double x = words.number("X");
        return WindowPoint{{x, words.number("Y")}};
    }
    if (words.take("page")) {
        const double x = words.number("X");
        return PagePoint{{x, words.number("Y")}};
    }
    return Element{.selector = words.rest("a place (X Y, page X Y, or a CSS selector)")};
}

host::Size readSize(Words& words) {
    constexpr int most = host::GLDevice::maxTextureSize;
    const int width = words.whole("WIDTH", 1, most);
    return {.width = width, .height = words.whole("HEIGHT", 1, most)};
}

Button readButton(Words& words) {
    if (words.take("right")) {
        return Button::right;
    }
    if (words.take("middle")) {
        return Button::middle;
    }
    words.take("left");
    return Button::left;
}

/// Blanks at the ends of a text need quotation marks, within which backslashes escape as in JSON.
std::string readText(Words& words) {
    auto text = words.rest("the text");
    if (!text.starts_with('"')) {
        return text;
    }
    const auto quoted = nlohmann::json::parse(text, nullptr, false);
    return quoted.is_string() ? quoted.get<std::string>()
                              : (fail("the text in quotation marks is not well formed"), "");
}

std::string readKey(Words& words) {
    std::string name(words.next("the key"));
    if (!isKeyName(name)) {
        fail("there is no key '" + name + "': use " + keyNames());
    }
    return name;
}

template <typename Event>
Step readButtonEvent(Words& words) {
    const auto button = readButton(words);
    const int count = words.take("double") ? 2 : 1;
    return Action(Event{.place = readPlace(words), .button = button, .clickCount = count});
}

Step readDrag(Words& words) {
    Words from(words.upToLast(" to ", "'PLACE to PLACE'"));
    const auto first = readPlace(from);
    return Action(Drag{.from = first, .to = readPlace(words)});
}

Step readScroll(Words& words) {
    Scroll scroll;
    scroll.delta.x = words.whole("DX", -1'000'000, 1'000'000);
    scroll.delta.y = words.whole("DY", -1'000'000, 1'000'000);
    scroll.hasPlace = words.take("at");
    if (scroll.hasPlace) {
        scroll.place = readPlace(words);
    }
    return Action(scroll);
}

Step readCamera(Words& words) {
    if (words.take("reset")) {
        return Action(ResetCamera{});
    }
    MoveCamera camera;
    camera.yaw = words.number("YAW");
    camera.pitch = words.number("PITCH");
    camera.distance = words.positive("DISTANCE");
    return Action(camera);
}

Step readWait(Words& words) {
    if (words.beginsWithNumber()) {
        const double seconds = words.number("SECONDS");
        return seconds >= 0 ? Check(Wait{seconds}) : (fail("SECONDS must not be negative"), Check());
    }
    const auto what = words.next("what to wait for");
    if (what == "load" || what == "failure") {
        return Check(
            WaitForLoad{.success = what == "load", .view = words.empty() ? 0 : words.whole("VIEW", 1, 1000)});
    }
    if (what == "painted") {
        return Check(WaitForPaint{});
    }
    if (what == "text") {
        return Check(WaitForText{readText(words)});
    }
    if (what == "element") {
        return Check(WaitForElement{words.rest("the selector")});
    }
    if (what == "true") {
        return Check(WaitForTruth{words.rest("the expression")});
    }
    fail("cannot wait for '" + std::string(what) +
         "': use SECONDS, load, failure, painted, text, element or true");
}

struct Word {
    std::string_view name;
    std::function<Step(Words&)> read;
};

template <typename Bare>
Step readBare(Words&) {
    return Action(Bare{});
}

const std::array words{
    Word{"open", [](Words& w) { return Step(Action(Open{w.rest("the URL")})); }},
    Word{"load", [](Words& w) { return Step(Action(Load{w.rest("the URL")})); }},
    Word{"back", readBare<Back>},
    Word{"forward", readBare<Forward>},
    Word{"reload", readBare<Reload>},
    Word{"stop", readBare<Stop>},
    Word{"view", [](Words& w) { return Step(Action(SelectView{w.whole("N", 1, 1000)})); }},
    Word{"resize", [](Words& w) { return Step(Action(ResizePage{readSize(w)})); }},
    Word{"window", [](Words& w) { return Step(Action(ResizeWindow{readSize(w)})); }},
    Word{"move", [](Words& w) { return Step(Action(Move{readPlace(w)})); }},
    Word{"press", readButtonEvent<Press>},
    Word{"release", readButtonEvent<Release>},
    Word{"click", [](Words& w) { return Step(Action(Click{.place = readPlace(w)})); }},
    Word{"double-click", [](Words& w) { return Step(Action(Click{.place = readPlace(w), .twice = true})); }},
    Word{"right-click",
         [](Words& w) { return Step(Action(Click{.place = readPlace(w), .button = Button::right})); }},
    Word{"middle-click",
         [](Words& w) { return Step(Action(Click{.place = readPlace(w), .button = Button::middle})); }},
    Word{"drag", readDrag},
    Word{"scroll", readScroll},
    Word{"type", [](Words& w) { return Step(Action(Type{readText(w)})); }},
    Word{"key", [](Words& w) { return Step(Action(Key{readKey(w)})); }},
    Word{"camera", readCamera},
    Word{"screenshot", [](Words& w) { return Step(Check(Screenshot{w.rest("the file")})); }},
    Word{"print", [](Words& w) { return Step(Check(Print{w.rest("the expression")})); }},
    Word{"wait", readWait},
    Word{"timeout", [](Words& w) { return Step(Check(Timeout{w.positive("SECONDS")})); }},
};

}  // namespace

Step parseStep(std::string_view line) {
    Words rest(line);
    const auto name = rest.next("the step");
    const auto word = std::ranges::find(words, name, &Word::name);
    if (word == words.end()) {
        std::string known;
        for (const auto& each : words) {
            known += (known.empty() ? "" : ", ") + std::string(each.name);
        }
        fail("there is no step '" + std::string(name) + "': use " + known);
    }
    try {
        Step step = word->read(rest);
        if (!rest.empty()) {
            fail("too much: '" + rest.rest("") + "'");
        }
        return step;
    } catch (const std::invalid_argument& error) {
        fail(std::string(name) + ": " + error.what());
    }
}

}  // namespace zarvik::player
