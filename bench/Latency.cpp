#include "Latency.h"

#include <random>

#include "Pages.h"

namespace zarvik::bench {

namespace {

using Milliseconds = std::chrono::duration<double, std::milli>;

constexpr int changes = 100;
constexpr double fastTurnsPerSecond = 1000;

/// Between two changes. Their length varies over several frames, so that they meet every phase of the
/// display's clock and of the engine's.
constexpr double shortestPause = 0.010;
constexpr double longestPause = 0.045;

/// Measures from the beginning of `change`, which is to give the block the next of its colours, until that
/// colour has arrived. `after` follows each time, unmeasured.
template <typename Change, typename After>
Figures measureChanges(Subject& subject, const Change& change, const After& after) {
    subject.show(blockPage());
    subject.watch(blockPoint);
    std::minstd_rand random;  // the same pauses each time
    std::uniform_real_distribution<double> pause(shortestPause, longestPause);
    std::vector<double> latencies;
    for (std::size_t i = 0; i < changes; ++i) {
        subject.run(std::chrono::duration<double>(pause(random)));
        const auto begin = Subject::Clock::now();
        change(i);
        const auto end = subject.waitForColour(blockColours.at((i + 1) % blockColours.size()));
        latencies.push_back(Milliseconds(end - begin).count());
        after(i);
    }
    return {{"median", quantile(latencies, 0.5)}, {"slowest", quantile(latencies, 0.99)}};
}

Figures measureInput(Subject& subject, const Settings&) {
    return measureChanges(
        subject, [&](std::size_t) { subject.pressPointer(blockPoint); },
        [&](std::size_t) { subject.releasePointer(blockPoint); });
}

Figures measureScriptToPixel(Subject& subject, const Settings&) {
    return measureChanges(
        subject, [&](std::size_t i) { subject.evaluate(i, "change(), " + std::to_string(i)); },
        [&](std::size_t i) { subject.waitForResults(i + 1); });
}

Figures measureStart(Subject& subject, const Settings&) {
    subject.watch({0, 0});
    subject.load(stillPage());
    const auto end = subject.waitForColour(cornerPixel);
    return {{"time", Milliseconds(end - subject.startOfProgram()).count()}};
}

Figures measureRecovery(Subject& subject, const Settings&) {
    subject.show(blockPage());
    subject.watch(blockPoint);
    subject.evaluate(0, "change(), 0");
    subject.waitForColour(blockColours.at(1));
    const auto begin = Subject::Clock::now();
    subject.killPage();
    const auto end = subject.waitForColour(blockColours.at(0));
    return {{"time", Milliseconds(end - begin).count()}};
}

std::vector<Line> lines(Target target) {
    return {{"median", "median, ms", "%.1f", std::move(target)}, {"slowest", "99th percentile, ms", "%.1f"}};
}

}  // namespace

Case inputCase(Size size, const std::string& name) {
    return {.name = name,
            .title = "input call to changed pixel, " + nameOf(size),
            .lines = lines({"< 25 ms", [](double library, double) { return library < 25; }}),
            .measure = measureInput,
            .size = size};
}

Case fastInputCase() {
    return {.name = "input-fast",
            .title = "input call to changed pixel, 1000 turns of the engine per second",
            .lines = lines({}),
            .measure = measureInput,
            .rate = fastTurnsPerSecond};
}

Case scriptToPixelCase(Size size, const std::string& name) {
    return {.name = name,
            .title = "script call to changed pixel, " + nameOf(size),
            .lines = lines({}),
            .measure = measureScriptToPixel,
            .size = size};
}

Case startCase() {
    return {.name = "start",
            .title = "start of the program to the first frame",
            .lines = {{"time", "ms", "%.0f"}},
            .measure = measureStart};
}

Case recoveryCase() {
    return {.name = "recovery",
            .title = "end of the page's process to the same page in a new one",
            .lines = {{"time",
                       "ms",
                       "%.0f",
                       {"< 2000 ms", [](double library, double) { return library < 2000; }}}},
            .measure = measureRecovery};
}

}  // namespace zarvik::bench
