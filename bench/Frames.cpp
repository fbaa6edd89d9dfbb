#include "Frames.h"

#include <stdexcept>

#include "Pages.h"

namespace zarvik::bench {

namespace {

constexpr std::chrono::milliseconds pollInterval{50};
constexpr std::chrono::milliseconds settlingTime{300};  // of each further view

Figures measureFrames(Subject& subject, const std::string& html, int views, const Settings& settings) {
    subject.show(html);
    // Many views that start at once take their time, and the more so on a busy machine.
    while (!alike(subject.pixel({0, 0}), cornerPixel)) {
        subject.run(pollInterval);
    }
    subject.run(settlingTime * (views - 1));
    const Reading begin = subject.read();
    subject.run(std::chrono::duration<double>(settings.seconds));
    const Reading end = subject.read();
    if (!alike(subject.pixel({0, 0}), cornerPixel)) {
        throw std::runtime_error("The picture is not that of the page.");
    }
    const auto measured = Measurement::between(begin, end);
    const auto percent = [&](double time) { return 100 * time / measured.seconds; };
    Figures figures{{"frames", measured.frames},
                    {"rate", measured.frames / measured.seconds / views},
                    {"tree", percent(measured.treeTime)},
                    {"own", percent(measured.ownTime)},
                    {"ownWithoutTurns", percent(measured.ownTime - measured.renderThreadTime)}};
    if (const auto memory = MemoryUse::now(subject.drawsOnDisplay())) {
        figures["memory"] = memory->tree / views;
    }
    if (measured.frames > 0) {
        const auto perFrame = [&](double time) { return 1e3 * time / measured.frames; };
        figures["cost"] = perFrame(measured.treeTime);
        figures["ownCost"] = perFrame(measured.ownTime);
        figures["ownCostWithoutTurns"] = perFrame(measured.ownTime - measured.renderThreadTime);
    }
    return figures;
}

Case makeCase(std::string name, const std::string& title, std::vector<Line> lines, std::string html,
              int views, Size size) {
    return {.name = std::move(name),
            .title = title + ", " + (views == 1 ? "1 view" : std::to_string(views) + " views") + " of " +
                     nameOf(size),
            .lines = std::move(lines),
            .measure =
                [html = std::move(html), views](Subject& subject, const Settings& settings) {
                    return measureFrames(subject, html, views, settings);
                },
            .views = views,
            .size = size};
}

std::vector<Line> animatedLines() {
    return {
        {"rate",
         "frames per second of each view",
         "%.1f",
         {"ratio >= 0.98", [](double library, double bare) { return library >= 0.98 * bare; }}},
        {"cost",
         "CPU of all processes, ms per frame",
         "%.2f",
         {"ratio <= 1.25", [](double library, double bare) { return library <= 1.25 * bare; }}},
        {"ownCost", "... of the side's own process", "%.2f"},
        {"ownCostWithoutTurns", "... without the engine's render thread", "%.2f"},
        {"memory", "memory of all processes, MB per view", "%.0f"},
    };
}

std::vector<Line> stillLines() {
    return {
        {"frames",
         "frames in the window",
         "%.0f",
         {"0", [](double library, double) { return library == 0; }}},
        {"tree", "CPU of all processes, % of a core", "%.2f"},
        {"own",
         "... of the side's own process",
         "%.2f",
         {"< 1 %", [](double library, double) { return library < 1; }}},
        {"ownWithoutTurns", "... without the engine's render thread", "%.2f"},
    };
}

}  // namespace

Case elementsCase(int views, Size size, const std::string& name) {
    return makeCase(name, "CSS animation", animatedLines(), elementsPage(), views, size);
}

Case canvasCase(int views, Size size, const std::string& name) {
    return makeCase(name, "whole-page canvas", animatedLines(), canvasPage(), views, size);
}

Case stillCase(int views, Size size, const std::string& name) {
    return makeCase(name, "still page", stillLines(), stillPage(), views, size);
}

}  // namespace zarvik::bench
