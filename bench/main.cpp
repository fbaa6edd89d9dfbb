#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <optional>
#include <stdexcept>

#include "Comparison.h"
#include "SideProcess.h"

namespace {

using zarvik::bench::Case;
using zarvik::bench::Side;

struct Options {
    zarvik::bench::Settings settings;
    int rounds = 5;
    std::vector<std::string> names;
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
    app.add_option("--rounds", options.rounds, "How often each side is measured with each case")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();

    // One measurement, as the program starts it for itself; by hand for a profiler.
    std::map<std::string, Side> sides;
    for (const Side side : {Side::library, Side::bare}) {
        sides.emplace(zarvik::bench::nameOf(side), side);
    }
    app.add_option("--side", options.side,
                   "Measure this side alone, once, in this process, and print the figures")
        ->transform(CLI::CheckedTransformer(sides))
        ->option_text("library|bare");
}

/// Those with one of the names, or all.
std::vector<const Case*> chosenCases(const std::vector<std::string>& names) {
    std::vector<const Case*> chosen;
    for (const auto& each : zarvik::bench::cases()) {
        if (names.empty() || std::ranges::find(names, each.name) != names.end()) {
            chosen.push_back(&each);
        }
    }
    return chosen;
}

}  // namespace

int main(int argc, char** argv) try {
    Options options;
    CLI::App app(
        "Compares the library in an engine with the bare browser engine: frames and processor time, scripts, "
        "messages and input, with the same pages and each side in a process of its own.",
        "zarvik-bench");
    addOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    const auto chosen = chosenCases(options.names);
    if (!options.side) {
        zarvik::bench::compareSides(chosen, options.rounds, options.settings);
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
