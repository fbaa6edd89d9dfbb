#include <CLI/CLI.hpp>
#include <cstdio>
#include <exception>
#include <map>
#include <optional>

#include "Comparison.h"
#include "SideProcess.h"

namespace {

using zarvik::bench::Page;
using zarvik::bench::Side;

struct Options {
    zarvik::bench::Settings settings;
    int rounds = 5;
    std::optional<Side> side;
    Page page = Page::elements;
};

void addOptions(CLI::App& app, Options& options) {
    app.add_option("--seconds", options.settings.seconds, "Length of each measured window")
        ->check(CLI::Range(1.0, 600.0))
        ->capture_default_str();
    app.add_option(
           "--rate", options.settings.rate,
           "Turns per second of the engine's render thread. With many more than the browser paints, no "
           "frame gives way to a newer one before the engine's next turn")
        ->check(CLI::Range(1.0, 1000.0))
        ->capture_default_str();
    app.add_option("--rounds", options.rounds, "How often each side is measured with each page")
        ->check(CLI::Range(1, 1000))
        ->capture_default_str();

    // One measurement, as the program starts it for itself; by hand for a profiler.
    std::map<std::string, Side> sides;
    for (const Side side : {Side::library, Side::bare}) {
        sides.emplace(zarvik::bench::nameOf(side), side);
    }
    std::map<std::string, Page> pages;
    for (const auto& page : zarvik::bench::pages()) {
        pages.emplace(page.option, page.page);
    }
    auto* side =
        app.add_option("--side", options.side,
                       "Measure this side alone, once. Prints seconds, frames, and processor seconds: of "
                       "all processes, of the own one, of the render thread")
            ->transform(CLI::CheckedTransformer(sides));
    app.add_option("--page", options.page, "The page for --side")
        ->transform(CLI::CheckedTransformer(pages))
        ->needs(side);
}

}  // namespace

int main(int argc, char** argv) try {
    Options options;
    CLI::App app(
        "Compares the library in an engine with a bare loop over the browser engine: frames per second and "
        "processor time of all their processes, with the same pages.",
        "zarvik-bench");
    addOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    if (options.side) {
        zarvik::bench::runSide(*options.side, zarvik::bench::textOf(options.page), options.settings);
    } else {
        zarvik::bench::compareSides(options.rounds, options.settings);
    }
    return 0;
} catch (const std::exception& error) {
    std::fprintf(stderr, "zarvik-bench: %s\n", error.what());
    return 1;
}
