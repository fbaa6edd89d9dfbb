#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Figures.h"
#include "Subject.h"

namespace zarvik::bench {

struct Settings {
    double seconds = 4;  // of each measured window
    std::optional<double>
        rate{};  // turns of the engine's render thread per second, instead of the case's own
};

/// What the library's median has to keep to, as it is printed and as it is decided.
struct Target {
    const char* text = "";
    bool (*holds)(double library, double bare) = nullptr;
};

/// A line of the table: a figure of both sides.
struct Line {
    const char* figure;
    const char* title;
    const char* format;
    Target target{};
};

/// Something that is compared.
struct Case {
    const char* name;   // on the command line
    const char* title;  // in the table
    std::vector<Line> lines;
    /// Throws std::exception with the reason if it cannot be measured.
    std::function<Figures(Subject&, const Settings&)> measure;
    double rate = 60;             // turns of the engine's render thread per second
    bool onOneProcessor = false;  // whether all processes of a side share one
};

/// In the order of the table.
const std::vector<Case>& cases();

}  // namespace zarvik::bench
