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

FrameTimer fixedTimer() {
    FrameTimer timer = timerAt(10'000'000);
    timer.isFixedTimeStep = true;
    return timer;
}

/// How many updates the tick at this reading of the counter runs.
int updatesAt(FrameTimer& timer, std::uint64_t counter) {
    int updates = 0;
    timer.advanceTo(counter, [&] { ++updates; });
    return updates;
}

}  // namespace

TEST(FrameTimerTest, StartsAsItIsMade) {
    const FrameTimer timer;
    EXPECT_GT(timer.counterFrequency, 0U);
    EXPECT_EQ(timer.maxCounterDelta, timer.counterFrequency / 10);
    EXPECT_EQ(timer.targetElapsedTicks, 166'666U);
    EXPECT_FALSE(timer.isFixedTimeStep);
    EXPECT_EQ(timer.frameCount, 0U);
    EXPECT_EQ(timer.framesPerSecond, 0U);
    FrameTimer later;
    EXPECT_GE(later.lastCounter, timer.lastCounter);
    later.tick([&] { EXPECT_LE(later.elapsedTicks, FrameTimer::ticksPerSecond / 10); });
    EXPECT_EQ(later.frameCount, 1U);
}

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

TEST(FrameTimerTest, FixedStepRunsForEachWholeStep) {
    FrameTimer timer = fixedTimer();
    EXPECT_EQ(updatesAt(timer, 100'000), 0);
    EXPECT_EQ(timer.leftOverTicks, 100'000U);
    EXPECT_EQ(timer.elapsedTicks, 0U);
    EXPECT_EQ(updatesAt(timer, 200'000), 1);
    EXPECT_EQ(timer.leftOverTicks, 200'000U - 166'666U);
    EXPECT_EQ(timer.elapsedTicks, 166'666U);
    EXPECT_EQ(timer.frameCount, 1U);
    // A gap catches up by a tenth of a second at most.
    EXPECT_EQ(updatesAt(timer, 100'000'000), 6);
    EXPECT_EQ(timer.totalTicks, 7U * 166'666U);
    EXPECT_EQ(timer.leftOverTicks, 33'334U + 1'000'000U - 6U * 166'666U);
}

TEST(FrameTimerTest, FixedStepTakesNearlyAStepForOne) {
    constexpr std::uint64_t step = 166'666;
    for (const std::uint64_t delta : {step - 2499, step - 1, step, step + 2499}) {
        FrameTimer timer = fixedTimer();
        EXPECT_EQ(updatesAt(timer, delta), 1) << delta;
        EXPECT_EQ(timer.leftOverTicks, 0U) << delta;
    }
    FrameTimer early = fixedTimer();
    EXPECT_EQ(updatesAt(early, step - 2500), 0);
    EXPECT_EQ(early.leftOverTicks, step - 2500);
    FrameTimer late = fixedTimer();
    EXPECT_EQ(updatesAt(late, step + 2500), 1);
    EXPECT_EQ(late.leftOverTicks, 2500U);
    // A display of 59.94 Hz: every refresh is one step, for as long as one likes.
    FrameTimer display = fixedTimer();
    for (std::uint64_t refresh = 1; refresh <= 100'000; ++refresh) {
        ASSERT_EQ(updatesAt(display, refresh * 166'834), 1) << refresh;
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
