#include "SessionRecorder.h"

#include <cerrno>
#include <cstdio>
#include <stdexcept>
#include <system_error>
#include <utility>

namespace zarvik::player {

namespace {

using std::chrono::milliseconds;

constexpr std::size_t longestJoin = 3;  // entries: a click and the press and release of the next one

// Shorter pauses are none.
constexpr milliseconds noticeable{50};
// What comes after a longer one is something new.
constexpr milliseconds shortPause{400};

template <typename Kind, typename Entry>
const Kind* actionOf(const Entry& entry) {
    return entry.action ? std::get_if<Kind>(&*entry.action) : nullptr;
}

}  // namespace

SessionRecorder::SessionRecorder(const std::filesystem::path& path) : file(path) {
    if (!file) {
        throw std::runtime_error("The recording " + path.string() +
                                 " cannot be written: " + std::generic_category().message(errno));
    }
    file << "# Recorded by zarvik-player. Play it with: ./run --script FILE\n";
}

SessionRecorder::~SessionRecorder() {
    while (!pending.empty()) {
        writeFirst();
    }
}

void SessionRecorder::performed(const Action& action, Clock::time_point time) {
    if (std::holds_alternative<steps::Press>(action)) {
        buttonHeld = true;
    } else if (std::holds_alternative<steps::Release>(action)) {
        buttonHeld = false;
    }
    add({.action = action, .line = {}, .begin = time, .end = time});
}

void SessionRecorder::loadEnded(std::size_t view, bool success, Clock::time_point time) {
    add({.action = std::nullopt,
         .line = (success ? "wait load " : "wait failure ") + std::to_string(view),
         .begin = time,
         .end = time});
}

void SessionRecorder::add(Entry entry) {
    pending.push_back(std::move(entry));
    while (join()) {
    }
    while (pending.size() > longestJoin) {
        writeFirst();
    }
}

bool SessionRecorder::join() {
    if (pending.size() < 2) {
        return false;
    }
    Entry& earlier = pending[pending.size() - 2];
    const Entry& later = pending.back();
    if (later.begin - earlier.end < shortPause) {
        if (auto joined = joinedFrom(earlier, later)) {
            earlier.action = std::move(joined);
            earlier.end = later.end;
            pending.pop_back();
            return true;
        }
    }
    return joinDoubleClick();
}

std::optional<Action> SessionRecorder::joinedFrom(const Entry& earlier, const Entry& later) const {
    if (const auto* press = actionOf<steps::Press>(earlier)) {
        const auto* release = actionOf<steps::Release>(later);
        if (release && release->place == press->place && release->button == press->button &&
            press->clickCount == 1) {
            return steps::Click{.place = press->place, .button = press->button};
        }
    } else if (const auto* text = actionOf<steps::Type>(earlier)) {
        if (const auto* more = actionOf<steps::Type>(later)) {
            return steps::Type{text->text + more->text};
        }
    } else if ((actionOf<steps::MoveCamera>(earlier) && actionOf<steps::MoveCamera>(later)) ||
               (actionOf<steps::Move>(earlier) && actionOf<steps::Move>(later) && !buttonHeld)) {
        return later.action;
    }
    return std::nullopt;
}

/// The second press of a double click says that there was a click before.
bool SessionRecorder::joinDoubleClick() {
    if (pending.size() < 3) {
        return false;
    }
    Entry& first = pending[pending.size() - 3];
    const auto* click = actionOf<steps::Click>(first);
    const auto* press = actionOf<steps::Press>(pending[pending.size() - 2]);
    const auto* release = actionOf<steps::Release>(pending.back());
    if (!click || click->twice || !press || press->clickCount != 2 || !release ||
        !(press->place == click->place) || !(release->place == click->place)) {
        return false;
    }
    first.action = steps::Click{.place = press->place, .button = press->button, .twice = true};
    first.end = pending.back().end;
    pending.pop_back();
    pending.pop_back();
    return true;
}

void SessionRecorder::writeFirst() {
    const Entry entry = std::move(pending.front());
    pending.pop_front();
    if (!played) {
        played = entry.begin;
    }
    if (!entry.action) {
        file << entry.line << '\n' << std::flush;
        played = entry.end;
        return;
    }
    // What is left out because it is short is made up for by the next pause that is not.
    if (const auto pause = entry.begin - *played; pause >= noticeable) {
        char text[32];
        std::snprintf(text, sizeof text, "wait %.2f\n", std::chrono::duration<double>(pause).count());
        file << text;
        played = entry.begin;
    }
    file << toText(*entry.action) << '\n' << std::flush;
}

}  // namespace zarvik::player
