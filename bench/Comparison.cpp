#include "Comparison.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "SideProcess.h"

namespace zarvik::bench {

namespace {

struct Rounds {
    std::vector<Measurement> library;
    std::vector<Measurement> bare;
};

using Figure = double (Measurement::*)() const;

/// What the library's median has to keep to, as it is printed and as it is decided.
struct Target {
    const char* text = "";
    bool (*holds)(double library, double bare) = nullptr;
};

/// A line of the table: a figure of both sides.
struct Line {
    const char* title;
    const char* format;
    Figure figure;
    Target target{};
};

const std::vector<Line>& animatedLines() {
    static const std::vector<Line> lines{
        {"frames per second",
         "%.1f",
         &Measurement::framesPerSecond,
         {"ratio >= 0.95", [](double library, double bare) { return library >= 0.95 * bare; }}},
        {"CPU of all processes, % of a core",
         "%.1f",
         &Measurement::treePercent,
         {"ratio <= 1.35", [](double library, double bare) { return library <= 1.35 * bare; }}},
        {"  without the engine's render thread", "%.1f", &Measurement::treePercentWithoutRenderThread},
        {"  of the side's own process", "%.1f", &Measurement::ownPercent},
    };
    return lines;
}

const std::vector<Line>& stillLines() {
    static const std::vector<Line> lines{
        {"frames in the window",
         "%.0f",
         &Measurement::frameCount,
         {"0", [](double library, double) { return library == 0; }}},
        {"CPU of own process, % of a core",
         "%.2f",
         &Measurement::ownPercent,
         {"< 1 %", [](double library, double) { return library < 1; }}},
        {"  without the engine's render thread", "%.2f", &Measurement::ownPercentWithoutRenderThread},
        {"CPU of all processes, % of a core", "%.2f", &Measurement::treePercent},
    };
    return lines;
}

std::vector<double> sorted(const std::vector<Measurement>& measurements, Figure figure) {
    std::vector<double> values;
    values.reserve(measurements.size());
    for (const auto& measurement : measurements) {
        values.push_back(std::invoke(figure, measurement));
    }
    std::ranges::sort(values);
    return values;
}

double median(const std::vector<double>& values) {
    const auto middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void showProgress(const std::string& text) {
    if (isatty(STDERR_FILENO) != 0) {
        std::fprintf(stderr, "\r\033[K%s", text.c_str());
    }
}

Rounds measure(const PageText& page, int rounds, const Settings& settings) {
    Rounds result;
    for (int round = 1; round <= rounds; ++round) {
        showProgress(std::string(page.title) + ", round " + std::to_string(round) + " of " +
                     std::to_string(rounds));
        result.library.push_back(measureInProcess(Side::library, page, settings));
        result.bare.push_back(measureInProcess(Side::bare, page, settings));
    }
    showProgress("");
    return result;
}

std::string formatted(const char* format, double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

/// The median with the least and the greatest value: how far apart they are tells how quiet the machine was.
std::string summary(const char* format, const std::vector<double>& values) {
    return formatted(format, median(values)) + " (" + formatted(format, values.front()) + "-" +
           formatted(format, values.back()) + ")";
}

void print(const Line& line, const Rounds& rounds) {
    const auto library = sorted(rounds.library, line.figure);
    const auto bare = sorted(rounds.bare, line.figure);
    const double libraryMedian = median(library);
    const double bareMedian = median(bare);
    const char* verdict = "";
    if (line.target.holds) {
        verdict = line.target.holds(libraryMedian, bareMedian) ? "holds" : "MISSED";
    }
    std::printf("  %-38s %18s %18s %6s  %-13s %s\n", line.title, summary(line.format, library).c_str(),
                summary(line.format, bare).c_str(),
                bareMedian > 0 ? formatted("%.2f", libraryMedian / bareMedian).c_str() : "-",
                line.target.text, verdict);
}

}  // namespace

void compareSides(int rounds, const Settings& settings) {
    std::printf("%dx%d, medians (least-greatest) of %d rounds of %g s on each side\n\n", pageWidth,
                pageHeight, rounds, settings.seconds);
    std::printf("  %-38s %18s %18s %6s  %s\n", "", "library", "bare", "ratio", "target");
    for (const auto& page : pages()) {
        const Rounds measured = measure(page, rounds, settings);
        std::printf("%s\n", page.title);
        for (const auto& line : page.page == Page::still ? stillLines() : animatedLines()) {
            print(line, measured);
        }
        std::fflush(stdout);
    }
}

}  // namespace zarvik::bench
