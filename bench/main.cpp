#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "Comparison.h"
#include "SideProcess.h"

namespace {

using zarvik::bench::Case;
using zarvik::bench::Side;

struct Options {
    zarvik::bench::Settings settings;
    int rounds = 3;
    bool quick = false;
    std::vector<std::string> names;
    std::vector<Side> sides;
    std::optional<Side> side;
};

void addOptions(CLI::App& app, Options& options) {
    std::vector<std::string> names;
    std::string footer = "Cases:\n";
    for (const auto& each : zarvik::bench::cases()) {
        names.emplace_back(each.name);
        footer += "  " + names.back() + std::string(28 - names.back().size(), ' ') + each.title + "\n";
    }
    app.footer(footer);
    app.add_option("case", options.names, "What to compare; otherwise all of the cases below")
        ->check(CLI::IsMember(names))
        ->option_text("...");
    app.add_option("--seconds", options.settings.seconds, "Length of each measured window")
        ->check(CLI::Range(1.0, 600.0))
        ->capture_default_str();
    app.add_option("--rate", options.settings.rate,
                   "Turns per second of the engine's render thread, instead of each case's own")
        ->check(CLI::Range(1.0, 1000.0));
    auto* const rounds =
        app.add_option("--rounds", options.rounds, "How often each side is measured with each case")
            ->check(CLI::Range(1, 1000))
            ->capture_default_str();
    app.add_flag("--quick", options.quick, "A few of the cases, two rounds: a few minutes")->excludes(rounds);

    std::map<std::string, Side> sides;
    for (const Side side : zarvik::bench::allSides) {
        sides.emplace(zarvik::bench::nameOf(side), side);
    }
    app.add_option("--sides", options.sides, "What to compare the library with; otherwise all that are there")
        ->delimiter(',')
        ->transform(CLI::CheckedTransformer(sides))
        ->option_text("bare,chromium,qt");
    // One measurement, as the program starts it for itself; by hand for a profiler.
    app.add_option("--side", options.side,
                   "Measure this side alone, once, in this process, and print the figures")
        ->transform(CLI::CheckedTransformer(sides))
        ->option_text("library|bare|chromium|qt");
}

/// Those with one of the names, or all.
std::vector<const Case*> chosenCases(const Options& options) {
    std::vector<const Case*> chosen;
    for (const auto& each : zarvik::bench::cases()) {
        const bool wanted = options.names.empty() ? !options.quick || each.quick
                                                  : std::ranges::count(options.names, each.name) > 0;
        if (wanted) {
            chosen.push_back(&each);
        }
    }
    return chosen;
}

/// The library and those named, or all that are there.
std::vector<Side> chosenSides(const Options& options) {
    std::vector<Side> chosen;
    for (const Side side : zarvik::bench::allSides) {
        const bool there = zarvik::bench::available(side);
        const bool named = std::ranges::count(options.sides, side) > 0;
        if (named && !there) {
            throw std::runtime_error(std::string("The side ") + zarvik::bench::nameOf(side) +
                                     " is not installed. ./run bench installs it.");
        }
        if (!there) {
            std::fprintf(stderr, "Without the side %s, which is not installed: ./run bench installs it.\n",
                         zarvik::bench::nameOf(side));
        } else if (named || options.sides.empty() || side == Side::library) {
            chosen.push_back(side);
        }
    }
    return chosen;
}

}  // namespace

int main(int argc, char** argv) try {
    Options options;
    CLI::App app(
        "Compares the library in an engine with the bare browser engine, and with other browsers that can "
        "draw "
        "into memory: frames and processor time, scripts, messages, input and memory, with the same pages "
        "and "
        "each side in a process of its own.",
        "zarvik-bench");
    addOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    const auto chosen = chosenCases(options);
    if (!options.side) {
        if (options.quick) {
            options.rounds = 2;
        }
        zarvik::bench::compareSides(chosen, chosenSides(options), options.rounds, options.settings);
        return 0;
    }
    if (chosen.size() != 1) {
        throw std::runtime_error("--side needs one case.");
    }
    zarvik::bench::runSide(*options.side, *chosen.front(), options.settings);
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "zarvik-bench: %s\n", error.what());
    return 1;
}
