#include "Input.h"

#include <random>

#include "Pages.h"

namespace zarvik::bench {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int inputs = 300;
constexpr double fastTurnsPerSecond = 1000;

/// Between two inputs. Their length varies over several frames, so that inputs meet every phase of the
/// display's clock and of the engine's.
constexpr double shortestPause = 0.010;
constexpr double longestPause = 0.045;

Figures measureInput(Subject& subject, const Settings&) {
    subject.show(inputPage());
    subject.watch(blockPoint);
    std::minstd_rand random;  // the same pauses each time
    std::uniform_real_distribution<double> pause(shortestPause, longestPause);
    std::vector<double> latencies;
    for (int i = 0; i < inputs; ++i) {
        subject.run(std::chrono::duration<double>(pause(random)));
        const auto begin = Subject::Clock::now();
        subject.pressPointer(blockPoint);
        const auto end = subject.waitForColour(blockColours.at((i + 1) % blockColours.size()));
        latencies.push_back(Milliseconds(end - begin).count());
        subject.releasePointer(blockPoint);
    }
    return {{"median", quantile(latencies, 0.5)}, {"slowest", quantile(latencies, 0.99)}};
}

std::vector<Line> lines() {
    return {{"median", "median, ms", "%.1f"}, {"slowest", "99th percentile, ms", "%.1f"}};
}

}  // namespace

Case inputCase() {
    return {
        .name = "input", .title = "input call to changed pixel", .lines = lines(), .measure = measureInput};
}

Case fastInputCase() {
    return {.name = "input-fast",
            .title = "input call to changed pixel, 1000 turns of the engine per second",
            .lines = lines(),
            .measure = measureInput,
            .rate = fastTurnsPerSecond};
}

}  // namespace zarvik::bench
