#pragma once

#include <cstdint>

/// Paces the capture loop: each tick measures the time since the last one and runs the update, once in the
/// variable mode, or as often as whole steps of targetElapsedTicks have gone by in the fixed mode. Ticks are
/// 100 nanoseconds. Lives on one thread.
struct FrameTimer {
    static constexpr std::uint64_t ticksPerSecond = 10'000'000;

    std::uint64_t counterFrequency = readFrequency();
    std::uint64_t lastCounter = readCounter();
    /// Longer gaps, as after a pause in a debugger, count as a tenth of a second.
    std::uint64_t maxCounterDelta = counterFrequency / 10;
    std::uint64_t elapsedTicks = 0;
    std::uint64_t totalTicks = 0;
    std::uint64_t leftOverTicks = 0;
    std::uint32_t frameCount = 0;
    std::uint32_t framesPerSecond = 0;
    std::uint32_t framesThisSecond = 0;
    std::uint64_t secondCounter = 0;
    bool isFixedTimeStep = false;
    std::uint64_t targetElapsedTicks = ticksPerSecond / 60;

    template <typename Update>
    void tick(Update update) {
        advanceTo(readCounter(), update);
    }

    /// The tick at a given reading of the counter.
    template <typename Update>
    void advanceTo(std::uint64_t counter, Update update);

  private:
    // Throw if the platform has no such counter.
    static std::uint64_t readFrequency();
    static std::uint64_t readCounter();
};

template <typename Update>
void FrameTimer::advanceTo(std::uint64_t counter, Update update) {
    /// How near to the target a fixed step counts as exact, so that a 59.94 Hz display does not drift: a
    /// quarter of a millisecond.
    constexpr std::uint64_t snapTicks = ticksPerSecond / 4000;

    std::uint64_t delta = counter - lastCounter;
    lastCounter = counter;
    secondCounter += delta;
    if (delta > maxCounterDelta) {
        delta = maxCounterDelta;
    }
    delta = delta * ticksPerSecond / counterFrequency;

    const std::uint32_t lastFrameCount = frameCount;
    if (isFixedTimeStep) {
        const std::uint64_t distance =
            delta > targetElapsedTicks ? delta - targetElapsedTicks : targetElapsedTicks - delta;
        leftOverTicks += distance < snapTicks ? targetElapsedTicks : delta;
        while (leftOverTicks >= targetElapsedTicks) {
            elapsedTicks = targetElapsedTicks;
            totalTicks += targetElapsedTicks;
            leftOverTicks -= targetElapsedTicks;
            ++frameCount;
            update();
        }
    } else {
        elapsedTicks = delta;
        totalTicks += delta;
        leftOverTicks = 0;
        ++frameCount;
        update();
    }

    if (frameCount != lastFrameCount) {
        ++framesThisSecond;
    }
    if (secondCounter >= counterFrequency) {
        framesPerSecond = framesThisSecond;
        framesThisSecond = 0;
        secondCounter %= counterFrequency;
    }
}
