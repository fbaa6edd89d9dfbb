#include "Comparison.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include "SideProcess.h"

namespace zarvik::bench {

namespace {

using Values = std::vector<double>;

struct Rounds {
    std::vector<Figures> library;
    std::vector<Figures> bare;
};

Values valuesOf(const std::vector<Figures>& rounds, const char* figure) {
    Values values;
    values.reserve(rounds.size());
    for (const auto& figures : rounds) {
        values.push_back(figures.at(figure));
    }
    return values;
}

void showProgress(const std::string& text) {
    if (isatty(STDERR_FILENO) != 0) {
        std::fprintf(stderr, "\r\033[K%s", text.c_str());
    }
}

Rounds measure(const Case& measured, int rounds, const Settings& settings) {
    Rounds result;
    for (int round = 1; round <= rounds; ++round) {
        showProgress(std::string(measured.title) + ", round " + std::to_string(round) + " of " +
                     std::to_string(rounds));
        result.library.push_back(measureInProcess(Side::library, measured, settings));
        result.bare.push_back(measureInProcess(Side::bare, measured, settings));
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
std::string summary(const char* format, const Values& values) {
    const auto [least, greatest] = std::ranges::minmax(values);
    return formatted(format, quantile(values, 0.5)) + " (" + formatted(format, least) + "-" +
           formatted(format, greatest) + ")";
}

void print(const Line& line, const Rounds& rounds) {
    const auto library = valuesOf(rounds.library, line.figure);
    const auto bare = valuesOf(rounds.bare, line.figure);
    const double libraryMedian = quantile(library, 0.5);
    const double bareMedian = quantile(bare, 0.5);
    const char* verdict = "";
    if (line.target.holds) {
        verdict = line.target.holds(libraryMedian, bareMedian) ? "holds" : "MISSED";
    }
    std::printf("  %-38s %20s %20s %6s  %-13s %s\n", line.title, summary(line.format, library).c_str(),
                summary(line.format, bare).c_str(),
                bareMedian > 0 ? formatted("%.2f", libraryMedian / bareMedian).c_str() : "-",
                line.target.text, verdict);
}

}  // namespace

void compareSides(const std::vector<const Case*>& compared, int rounds, const Settings& settings) {
    std::printf("%dx%d, medians (least-greatest) of %d rounds on each side, windows of %g s\n\n", pageWidth,
                pageHeight, rounds, settings.seconds);
    std::printf("  %-38s %20s %20s %6s  %s\n", "", "library", "bare", "ratio", "target");
    for (const auto* each : compared) {
        const Rounds measured = measure(*each, rounds, settings);
        std::printf("%s\n", each->title);
        for (const auto& line : each->lines) {
            print(line, measured);
        }
        std::fflush(stdout);
    }
}

}  // namespace zarvik::bench
