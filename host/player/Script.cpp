#include "Script.h"

#include <cerrno>
#include <fstream>
#include <system_error>

namespace zarvik::player {

Script Script::read(std::istream& text, const std::string& name) {
    Script script{.name = name, .lines = {}};
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        const auto begin = line.find_first_not_of(" \t");
        if (begin == std::string::npos || line[begin] == '#') {
            continue;
        }
        line.resize(line.find_last_not_of(" \t") + 1);
        try {
            script.lines.push_back({.number = number, .step = parseStep(line)});
        } catch (const std::invalid_argument& error) {
            throw ScriptError(name + ":" + std::to_string(number) + ": " + error.what());
        }
    }
    return script;
}

Script Script::read(const std::filesystem::path& file) {
    std::ifstream text(file);
    if (!text || std::filesystem::is_directory(file)) {
        throw ScriptError(file.string() + ": the script cannot be read: " +
                          std::generic_category().message(text ? EISDIR : errno));
    }
    return read(text, file.string());
}

}  // namespace zarvik::player
