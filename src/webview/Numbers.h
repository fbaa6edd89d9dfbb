#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

/// The value truncated toward zero, held inside the range of the type; not-a-number gives 0.
inline std::int32_t truncate(double value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::isnan(value)) {
        return 0;
    }
    if (value <= Limits::min()) {
        return Limits::min();
    }
    if (value >= Limits::max()) {
        return Limits::max();
    }
    return static_cast<std::int32_t>(value);
}
