#pragma once

#include <filesystem>
#include <istream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Step.h"

namespace zarvik::player {

/// Something is wrong with a script's text. The message names the file and the line.
struct ScriptError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A list of steps in a text file, one a line. Empty lines and lines that begin with # say nothing.
struct Script {
    struct Line {
        int number = 0;
        Step step;
    };

    std::string name;
    std::vector<Line> lines;

    /// Throws ScriptError.
    static Script read(std::istream& text, const std::string& name);
    /// Throws ScriptError, also if the file cannot be read.
    static Script read(const std::filesystem::path& file);
};

}  // namespace zarvik::player
