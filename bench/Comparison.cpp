#include "Comparison.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "SideProcess.h"

namespace zarvik::bench {

namespace {

using Values = std::vector<double>;

/// The figures of each round. A side that cannot do what is measured has none.
using Rounds = std::map<Side, std::vector<Figures>>;

const char* titleOf(Side side) {
    switch (side) {
        case Side::library:
            return "library";
        case Side::bare:
            return "bare";
        case Side::chromium:
            return "Chromium";
        case Side::qt:
            return "Qt WebEngine";
    }
    return "";
}

/// What is under way: over the last line of a terminal, elsewhere one line for each.
void showProgress(const std::string& text) {
    const bool terminal = isatty(STDERR_FILENO) != 0;
    if (terminal || !text.empty()) {
        std::fprintf(stderr, terminal ? "\r\033[K%s" : "%s\n", text.c_str());
    }
}

/// Tries twice: a browser may end a process of its own just then, whose processor time is lost.
std::optional<Figures> measurePatiently(Side side, const Case& measured, const Settings& settings) {
    try {
        return measureInProcess(side, measured, settings);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "\n%s\nOnce more ...\n", error.what());
    }
    return measureInProcess(side, measured, settings);
}

/// Adds to the failures what could not be measured.
Rounds measure(const Case& measured, const std::vector<Side>& sides, int rounds, const Settings& settings,
               const std::string& place, std::string& failures) {
    Rounds result;
    std::vector<Side> serving = sides;
    for (int round = 1; round <= rounds; ++round) {
        for (const Side side : std::vector(serving)) {
            showProgress(place + " " + measured.name + ", round " + std::to_string(round) + " of " +
                         std::to_string(rounds) + ", " + nameOf(side));
            try {
                if (auto figures = measurePatiently(side, measured, settings)) {
                    result[side].push_back(std::move(*figures));
                    continue;
                }
            } catch (const std::runtime_error& error) {
                failures += std::string("\n") + error.what();
                result.erase(side);
            }
            std::erase(serving, side);
        }
    }
    showProgress("");
    return result;
}

/// Empty if the side has no such figure.
Values valuesOf(const Rounds& rounds, Side side, const char* figure) {
    Values values;
    if (const auto place = rounds.find(side); place != rounds.end()) {
        for (const auto& figures : place->second) {
            if (const auto value = figures.find(figure); value != figures.end()) {
                values.push_back(value->second);
            }
        }
    }
    return values;
}

std::string formatted(const char* format, double value) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), format, value);
    return text.data();
}

/// The median with the least and the greatest value: how far apart they are tells how quiet the machine was.
std::string summary(const char* format, const Values& values) {
    if (values.empty()) {
        return "-";
    }
    const auto [least, greatest] = std::ranges::minmax(values);
    const auto median = formatted(format, quantile(values, 0.5));
    return values.size() == 1
               ? median
               : median + " (" + formatted(format, least) + "-" + formatted(format, greatest) + ")";
}

std::string ratio(const Values& library, const Values& other) {
    if (library.empty() || other.empty() || quantile(other, 0.5) <= 0) {
        return "-";
    }
    return formatted("%.2f", quantile(library, 0.5) / quantile(other, 0.5));
}

std::string verdict(const Target& target, const Values& library, const Values& bare) {
    if (!target.holds) {
        return "";
    }
    if (library.empty() || bare.empty()) {
        return target.text;
    }
    return target.text +
           (target.holds(quantile(library, 0.5), quantile(bare, 0.5)) ? ": holds" : ": **missed**");
}

void printHead(const std::vector<Side>& sides) {
    std::string head = "| |";
    std::string rule = "|---|";
    for (const Side side : sides) {
        head += std::string(" ") + titleOf(side) + " |";
        rule += "---:|";
        if (side != Side::library) {
            head += " ratio |";
            rule += "---:|";
        }
    }
    std::printf("%s target |\n%s---|\n", head.c_str(), rule.c_str());
}

void print(const Line& line, const Rounds& rounds, const std::vector<Side>& sides) {
    const auto library = valuesOf(rounds, Side::library, line.figure);
    std::string row = std::string("| ") + line.title + " |";
    for (const Side side : sides) {
        const auto values = valuesOf(rounds, side, line.figure);
        row += " " + summary(line.format, values) + " |";
        if (side != Side::library) {
            row += " " + ratio(library, values) + " |";
        }
    }
    std::printf("%s %s |\n", row.c_str(),
                verdict(line.target, library, valuesOf(rounds, Side::bare, line.figure)).c_str());
}

}  // namespace

void compareSides(const std::vector<const Case*>& compared, const std::vector<Side>& sides, int rounds,
                  const Settings& settings) {
    std::printf(
        "Medians (least-greatest) of %d rounds, windows of %g s. Ratio: the library's figure by the "
        "other's.\n\n",
        rounds, settings.seconds);
    printHead(sides);
    std::string failures;
    int number = 0;
    for (const auto* each : compared) {
        const auto place = "[" + std::to_string(++number) + "/" + std::to_string(compared.size()) + "]";
        const Rounds measured = measure(*each, sides, rounds, settings, place, failures);
        std::string row = "| **" + each->title + "** |";
        for (std::size_t i = 0; i < 2 * sides.size(); ++i) {
            row += " |";
        }
        std::printf("%s\n", row.c_str());
        for (const auto& line : each->lines) {
            print(line, measured, sides);
        }
        std::fflush(stdout);
    }
    if (!failures.empty()) {
        throw std::runtime_error("Some of it could not be measured." + failures);
    }
}

}  // namespace zarvik::bench
