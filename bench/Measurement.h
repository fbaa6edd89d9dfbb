#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "zarvik/host/ProcessTree.h"

namespace zarvik::bench {

/// What a side counts, at one moment.
struct Reading {
    std::chrono::steady_clock::time_point time;
    std::uint64_t frames;
    host::ProcessTimes processes;
    std::chrono::nanoseconds renderThread;

    /// Reads the processor times of this process's tree, and of the display's server, now.
    static Reading now(std::uint64_t frames, std::chrono::nanoseconds renderThread = {});
};

/// What happened between two readings.
struct Measurement {
    double seconds = 0;
    double frames = 0;
    // Seconds of processor time: of all processes, of the side's own process, and of the engine's render
    // thread in it.
    double treeTime = 0;
    double ownTime = 0;
    double renderThreadTime = 0;

    static Measurement between(const Reading& begin, const Reading& end);
};

/// Memory in megabytes, of which each process has its share of what several use.
struct MemoryUse {
    double tree = 0;  // of this process and its descendants
    double own = 0;   // of this process, without the files that it has mapped: programs and libraries

    /// Nothing if a process does not let its memory be seen: some browsers' do not, but to root.
    static std::optional<MemoryUse> now(bool withDisplayServer);
};

/// When this process was started, to a hundredth of a second.
std::chrono::steady_clock::time_point startOfThisProcess();

}  // namespace zarvik::bench
