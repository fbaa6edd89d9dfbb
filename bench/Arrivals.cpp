#include "Arrivals.h"

#include <stdexcept>
#include <string>

namespace zarvik::bench {

void Arrivals::add(std::string_view text) {
    const std::scoped_lock lock(mutex);
    wrong = wrong || text != std::to_string(received);
    ++received;
    if (received == wanted || wrong) {
        awaited.notify_one();
    }
}

bool Arrivals::reached(std::uint64_t atLeast) const {
    const std::scoped_lock lock(mutex);
    return reachedLocked(atLeast);
}

void Arrivals::waitFor(std::uint64_t atLeast) {
    std::unique_lock lock(mutex);
    wanted = atLeast;
    awaited.wait(lock, [&] { return reachedLocked(atLeast); });
}

bool Arrivals::reachedLocked(std::uint64_t atLeast) const {
    if (wrong) {
        throw std::runtime_error("What arrived was not what was due.");
    }
    return received >= atLeast;
}

}  // namespace zarvik::bench
