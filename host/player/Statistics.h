#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "zarvik/host/ProcessTree.h"

namespace zarvik::player {

/// Counts what the player does, for --stats. Any thread, but sample() always the same one.
class Statistics {
  public:
    using Clock = std::chrono::steady_clock;

    /// Counts from now on.
    Statistics();

    /// Some input was sent to a view, which had this many pictures then.
    void inputSent(const std::string& view, std::uint64_t pictures);
    /// A frame was drawn with these numbers of pictures of the views in it. Render thread.
    void frameDrawn(const std::map<std::string, std::uint64_t>& pictures);

    /// Reads the processor times of this process and the browser's. Times of processes that end between two
    /// calls are lost, so it is called often.
    void sample();

    /// What happened since the last call, in one line.
    std::string lastInterval();
    std::string summary() const;

  private:
    struct Input {
        std::string view;
        std::uint64_t pictures = 0;
        Clock::time_point time;
    };
    struct Totals {
        Clock::time_point time = Clock::now();
        std::uint64_t frames = 0;
        std::map<std::string, std::uint64_t> pictures{};
        std::chrono::nanoseconds processorTime{};
    };

    mutable std::mutex mutex;
    /// The input that nothing followed in time.
    void giveUp(Clock::time_point now);
    /// The latency in milliseconds below which this part of the answered input is.
    double latency(double part) const;

    std::deque<Input> waiting;  // the oldest first
    std::uint64_t unanswered = 0;
    std::uint64_t answered = 0;
    std::vector<std::uint64_t> latencies;  // how many had each number of tenths of a millisecond
    Totals totals;
    host::ProcessTimes processes;  // the last known time of each process that was ever seen

    const Clock::time_point start = Clock::now();
    Totals previous;
};

}  // namespace zarvik::player
