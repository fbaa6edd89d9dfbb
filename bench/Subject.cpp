#include "Subject.h"

#include <cstdlib>

namespace zarvik::bench {

bool alike(const Pixel& one, const Pixel& other) {
    constexpr int tolerance = 10;
    for (std::size_t i = 0; i < one.size(); ++i) {
        if (std::abs(one[i] - other[i]) > tolerance) {
            return false;
        }
    }
    return true;
}

}  // namespace zarvik::bench
