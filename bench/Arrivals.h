#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string_view>

namespace zarvik::bench {

/// Counts texts as they arrive and checks each of them: the first has to read "0", the next "1", and so on.
/// One thread adds, one may wait.
class Arrivals {
  public:
    void add(std::string_view text);

    /// Throws std::runtime_error if a wrong text arrived.
    bool reached(std::uint64_t atLeast) const;
    /// Waits for as many and throws as reached() does.
    void waitFor(std::uint64_t atLeast);

  private:
    bool reachedLocked(std::uint64_t atLeast) const;

    mutable std::mutex mutex;
    std::condition_variable awaited;
    std::uint64_t received = 0;
    std::uint64_t wanted = 0;  // the waiting thread is woken only once it has what it waits for
    bool wrong = false;
};

}  // namespace zarvik::bench
