#include "offscreen/FrameTimer.h"

#include <gtest/gtest.h>

namespace {

/// A timer that starts at 0 of a counter with this frequency.
FrameTimer timerAt(std::uint64_t frequency) {
    FrameTimer timer;
    timer.counterFrequency = frequency;
    timer.maxCounterDelta = frequency / 10;
    timer.lastCounter = 0;
    return timer;
}

/// How many updates the tick at this reading of the counter runs.
int updatesAt(FrameTimer& timer, std::uint64_t counter) {
    int updates = 0;
    timer.advanceTo(counter, [&] { ++updates; });
    return updates;
}

}  // namespace

TEST(FrameTimerTest, VariableStepRunsOnceForWhateverTimeWentBy) {
    FrameTimer timer = timerAt(3'000'000);  // 10/3 ticks a count
    timer.leftOverTicks = 77;
    EXPECT_EQ(updatesAt(timer, 30'000), 1);
    EXPECT_EQ(timer.elapsedTicks, 100'000U);
    EXPECT_EQ(timer.leftOverTicks, 0U);
    EXPECT_EQ(updatesAt(timer, 30'000), 1);  // no time at all
    EXPECT_EQ(timer.elapsedTicks, 0U);
    EXPECT_EQ(updatesAt(timer, 30'001), 1);
    EXPECT_EQ(timer.elapsedTicks, 3U);
    EXPECT_EQ(timer.totalTicks, 100'003U);
    EXPECT_EQ(timer.frameCount, 3U);
}

// The update sees the tick's own values.
TEST(FrameTimerTest, UpdateRunsAfterTheTimesAreSet) {
    FrameTimer timer = timerAt(10'000'000);
    timer.advanceTo(5, [&] {
        EXPECT_EQ(timer.elapsedTicks, 5U);
        EXPECT_EQ(timer.totalTicks, 5U);
        EXPECT_EQ(timer.frameCount, 1U);
    });
    EXPECT_THROW(timer.advanceTo(9, [] { throw 1; }), int);
    EXPECT_EQ(updatesAt(timer, 10), 1);
    EXPECT_EQ(timer.elapsedTicks, 1U);
}

TEST(FrameTimerTest, GapCountsAsATenthOfASecond) {
    for (const std::uint64_t frequency : {10'000'000ULL, 1'000'000'000ULL, 24'000'000ULL, 3'579'545ULL}) {
        FrameTimer timer = timerAt(frequency);
        updatesAt(timer, frequency / 10);
        EXPECT_NEAR(static_cast<double>(timer.elapsedTicks), 1'000'000, 3) << frequency;
        const auto tenth = timer.elapsedTicks;
        updatesAt(timer, frequency * 3600);
        EXPECT_EQ(timer.elapsedTicks, tenth) << frequency;
        // Years of a counter: nothing overflows.
        updatesAt(timer, frequency * 3600 * 24 * 365 * 10);
        EXPECT_EQ(timer.elapsedTicks, tenth) << frequency;
        updatesAt(timer, timer.lastCounter + frequency / 100);
        EXPECT_NEAR(static_cast<double>(timer.elapsedTicks), 100'000, 3) << frequency;
    }
}

TEST(FrameTimerTest, FixedStepRunsForEachWholeStepOrNearlyOne) {
    constexpr std::uint64_t step = 166'666;
    struct {
        std::uint64_t delta;
        int updates;
        std::uint64_t leftOver;
    } const cases[] = {
        {100'000, 0, 100'000}, {step - 2500, 0, step - 2500}, {step - 2499, 1, 0},
        {step + 2499, 1, 0},   {step + 2500, 1, 2500},        {100'000'000, 6, 1'000'000 - 6 * step},
    };
    for (const auto& [delta, updates, leftOver] : cases) {
        FrameTimer timer = timerAt(10'000'000);
        timer.isFixedTimeStep = true;
        EXPECT_EQ(updatesAt(timer, delta), updates) << delta;
        EXPECT_EQ(timer.leftOverTicks, leftOver) << delta;
        EXPECT_EQ(timer.totalTicks, static_cast<std::uint64_t>(updates) * step) << delta;
    }
}

TEST(FrameTimerTest, FramesAreCountedPerSecond) {
    FrameTimer timer = timerAt(1000);
    for (std::uint64_t counter = 20; counter < 1000; counter += 20) {
        updatesAt(timer, counter);
        ASSERT_EQ(timer.framesPerSecond, 0U);
    }
    updatesAt(timer, 1010);
    EXPECT_EQ(timer.framesPerSecond, 50U);
    EXPECT_EQ(timer.framesThisSecond, 0U);
    EXPECT_EQ(timer.secondCounter, 10U);
    // A pause of seconds: the clamp holds for the steps only.
    updatesAt(timer, 4500);
    EXPECT_EQ(timer.framesPerSecond, 1U);
    EXPECT_EQ(timer.secondCounter, 500U);
    // A tick with several steps is one frame; one without a step is none.
    timer.isFixedTimeStep = true;
    EXPECT_EQ(updatesAt(timer, 4600), 6);
    EXPECT_EQ(updatesAt(timer, 4605), 0);
    EXPECT_EQ(timer.framesThisSecond, 1U);
}
