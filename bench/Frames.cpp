#include "Frames.h"

#include <stdexcept>

#include "Pages.h"

namespace zarvik::bench {

namespace {

Figures measure(Subject& subject, const std::string& html, const Settings& settings) {
    subject.show(html);
    const Reading begin = subject.read();
    subject.run(std::chrono::duration<double>(settings.seconds));
    const Reading end = subject.read();
    if (subject.pixel({0, 0}) != cornerPixel) {
        throw std::runtime_error("The picture is not that of the page.");
    }
    const auto measured = Measurement::between(begin, end);
    const auto percent = [&](double time) { return 100 * time / measured.seconds; };
    return {{"frames", measured.frames},
            {"rate", measured.frames / measured.seconds},
            {"tree", percent(measured.treeTime)},
            {"treeWithoutTurns", percent(measured.treeTime - measured.renderThreadTime)},
            {"own", percent(measured.ownTime)},
            {"ownWithoutTurns", percent(measured.ownTime - measured.renderThreadTime)}};
}

Case makeCase(const char* name, const char* title, std::vector<Line> lines, std::string html) {
    return {.name = name,
            .title = title,
            .lines = std::move(lines),
            .measure = [html = std::move(html)](Subject& subject, const Settings& settings) {
                return measure(subject, html, settings);
            }};
}

std::vector<Line> animatedLines() {
    return {
        {"rate",
         "frames per second",
         "%.1f",
         {"ratio >= 0.95", [](double library, double bare) { return library >= 0.95 * bare; }}},
        {"tree",
         "CPU of all processes, % of a core",
         "%.1f",
         {"ratio <= 1.35", [](double library, double bare) { return library <= 1.35 * bare; }}},
        {"treeWithoutTurns", "  without the engine's render thread", "%.1f"},
        {"own", "  of the side's own process", "%.1f"},
    };
}

std::vector<Line> stillLines() {
    return {
        {"frames",
         "frames in the window",
         "%.0f",
         {"0", [](double library, double) { return library == 0; }}},
        {"own",
         "CPU of own process, % of a core",
         "%.2f",
         {"< 1 %", [](double library, double) { return library < 1; }}},
        {"ownWithoutTurns", "  without the engine's render thread", "%.2f"},
        {"tree", "CPU of all processes, % of a core", "%.2f"},
    };
}

}  // namespace

Case elementsCase() {
    return makeCase("elements", "CSS animation", animatedLines(), elementsPage());
}

Case canvasCase() {
    return makeCase("canvas", "whole-page canvas", animatedLines(), canvasPage());
}

Case stillCase() {
    return makeCase("still", "still page", stillLines(), stillPage());
}

}  // namespace zarvik::bench
