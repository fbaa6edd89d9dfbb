#pragma once

#include <filesystem>
#include <string>
#include <variant>
#include <vector>

#include "zarvik/host/GLContext.h"

namespace zarvik::player {

/// What the command line asks for.
struct Options {
    std::vector<std::string> pages{};
    host::Size pageSize{.width = 1280, .height = 720};
    host::Size windowSize{.width = 1440, .height = 810};
    std::filesystem::path script{};
    std::filesystem::path screenshot{};
    std::filesystem::path record{};
    std::filesystem::path library;
    double rate = 60;
    double timeoutSeconds = 30;
    bool window = false;
    bool statistics = false;
    bool verbose = false;
};

/// The options, or the code to exit with at once: after --help or --version, or after an error, which was
/// printed.
std::variant<Options, int> parseOptions(int argc, char** argv);

}  // namespace zarvik::player
