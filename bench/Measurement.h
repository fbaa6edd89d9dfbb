#pragma once

#include <chrono>
#include <cstdint>
#include <iosfwd>

#include "ProcessTree.h"

namespace zarvik::bench {

/// What a side counts, at one moment.
struct Reading {
    std::chrono::steady_clock::time_point time;
    std::uint64_t frames;
    ProcessTimes processes;
    std::chrono::nanoseconds renderThread;

    /// Reads the processor times of this process's tree now.
    static Reading now(std::uint64_t frames, std::chrono::nanoseconds renderThread = {});
};

/// One side with one page during the measured window.
struct Measurement {
    double seconds = 0;
    double frames = 0;
    // Seconds of processor time: of the whole process tree, of the side's own process, and of the engine's
    // render thread in it.
    double treeTime = 0;
    double ownTime = 0;
    double renderThreadTime = 0;

    static Measurement between(const Reading& begin, const Reading& end);

    double frameCount() const { return frames; }
    double framesPerSecond() const { return frames / seconds; }
    double treePercent() const { return 100 * treeTime / seconds; }
    double ownPercent() const { return 100 * ownTime / seconds; }
    double treePercentWithoutRenderThread() const { return 100 * (treeTime - renderThreadTime) / seconds; }
    double ownPercentWithoutRenderThread() const { return 100 * (ownTime - renderThreadTime) / seconds; }
};

/// As one line of text, which the side's process hands to the comparing one.
std::ostream& operator<<(std::ostream& stream, const Measurement& measurement);
std::istream& operator>>(std::istream& stream, Measurement& measurement);

}  // namespace zarvik::bench
