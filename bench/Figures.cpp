#include "Figures.h"

#include <algorithm>
#include <cmath>
#include <sstream>
#include <stdexcept>

namespace zarvik::bench {

std::string toText(const Figures& figures) {
    std::ostringstream text;
    text.precision(12);
    for (const auto& [name, value] : figures) {
        text << name << ' ' << value << '\n';
    }
    return text.str();
}

Figures figuresFrom(const std::string& text) {
    Figures figures;
    std::istringstream lines(text);
    std::string name;
    while (lines >> name) {
        if (!(lines >> figures[name])) {
            throw std::runtime_error("Not a figure: " + name);
        }
    }
    return figures;
}

double quantile(std::vector<double> values, double share) {
    std::ranges::sort(values);
    const double place = share * static_cast<double>(values.size() - 1);
    const auto below = static_cast<std::size_t>(std::floor(place));
    const auto above = std::min(below + 1, values.size() - 1);
    return std::lerp(values[below], values[above], place - std::floor(place));
}

}  // namespace zarvik::bench
