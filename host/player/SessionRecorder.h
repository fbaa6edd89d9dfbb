#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include "Step.h"

namespace zarvik::player {

/// Writes what is done as a script that does it again. Actions that belong together become one line: a press
/// and its release are a click, characters a text. Main thread.
class SessionRecorder {
  public:
    using Clock = std::chrono::steady_clock;

    /// Throws std::runtime_error if the file cannot be written.
    explicit SessionRecorder(const std::filesystem::path& file);
    /// Writes what is still missing.
    ~SessionRecorder();
    SessionRecorder(const SessionRecorder&) = delete;
    SessionRecorder& operator=(const SessionRecorder&) = delete;

    void performed(const Action& action, Clock::time_point time = Clock::now());
    /// A load of a view has ended: whoever plays the script has to wait for that.
    void loadEnded(std::size_t view, bool success, Clock::time_point time = Clock::now());

  private:
    struct Entry {
        std::optional<Action> action;
        std::string line;  // of an entry that is no action
        Clock::time_point begin;
        Clock::time_point end;
    };

    void add(Entry entry);
    /// Joins the last entries as long as that is possible.
    bool join();
    std::optional<Action> joinedFrom(const Entry& earlier, const Entry& later) const;
    bool joinDoubleClick();
    void writeFirst();

    std::ofstream file;
    std::deque<Entry> pending;                // may yet be joined with what comes
    std::optional<Clock::time_point> played;  // the time at which the script stands when it is played
    bool buttonHeld = false;                  // moves are then a path, each of them counts
};

}  // namespace zarvik::player
