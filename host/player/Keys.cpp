#include "Keys.h"

#include <algorithm>
#include <array>

namespace zarvik::player {

namespace {

constexpr std::array<std::string_view, 6> names{"Enter",      "Backspace", "ArrowLeft",
                                                "ArrowRight", "ArrowUp",   "ArrowDown"};

}  // namespace

bool isKeyName(std::string_view name) {
    return std::ranges::find(names, name) != names.end();
}

std::string keyNames() {
    std::string list;
    for (const auto name : names) {
        list += (list.empty() ? "" : ", ") + std::string(name);
    }
    return list;
}

}  // namespace zarvik::player
