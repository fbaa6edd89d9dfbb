#pragma once

#include <chrono>
#include <cstdint>
#include <ctime>

namespace winrt {
struct clock;
}  // namespace winrt

namespace winrt::Windows::Foundation {

/// A span of time in steps of 100 ns.
using TimeSpan = std::chrono::duration<int64_t, std::ratio<1, 10'000'000>>;

/// A point in time: steps of 100 ns since the beginning of the year 1601, UTC.
using DateTime = std::chrono::time_point<clock, TimeSpan>;

}  // namespace winrt::Windows::Foundation

namespace winrt {

/// The calendar clock.
struct clock {
    using duration = Windows::Foundation::TimeSpan;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = Windows::Foundation::DateTime;

    static constexpr bool is_steady = false;

    static time_point now() noexcept {
        auto const sinceUnix = std::chrono::system_clock::now().time_since_epoch();
        return time_point(std::chrono::duration_cast<duration>(sinceUnix) + unixEpoch);
    }

    static time_t to_time_t(time_point const& time) noexcept {
        return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch() - unixEpoch).count();
    }

    static time_point from_time_t(time_t time) noexcept {
        return time_point(std::chrono::seconds(time) + unixEpoch);
    }

  private:
    /// From the beginning of 1601 to that of 1970.
    static constexpr std::chrono::seconds unixEpoch{11'644'473'600};
};

}  // namespace winrt
