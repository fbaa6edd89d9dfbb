#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Figures.h"
#include "Subject.h"

namespace zarvik::bench {

struct Settings {
    double seconds = 2;  // of each measured window
    std::optional<double>
        rate{};  // turns of the engine's render thread per second, instead of the case's own
};

/// What the library's median has to keep to, as it is printed and as it is decided.
struct Target {
    std::string text{};
    std::function<bool(double library, double bare)> holds{};
};

/// A line of the table: a figure of every side.
struct Line {
    const char* figure = "";
    const char* title = "";
    const char* format = "";
    Target target{};
};

/// Something that is compared.
struct Case {
    std::string name;   // on the command line
    std::string title;  // in the table
    std::vector<Line> lines;
    /// The views are open. Throws NotServed, or another std::exception with the reason if it cannot be
    /// measured.
    std::function<Figures(Subject&, const Settings&)> measure;
    int views = 1;
    Size size{};
    double rate = 60;             // turns of the engine's render thread per second
    bool onOneProcessor = false;  // whether all processes of a side share one
    bool quick = false;           // whether a short run measures it too
};

/// In the order of the table.
const std::vector<Case>& cases();

/// As it is usually called: 720p, 1080p, 4K.
std::string nameOf(Size size);

}  // namespace zarvik::bench
