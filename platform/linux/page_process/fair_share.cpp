#include "fair_share.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <thread>

namespace {

std::atomic<int> engine = -1;

/// Several pages that do nothing but draw would take the processors from the thread that takes their pictures
/// over, and draw more that nobody sees. Threads that exchange messages run already and stay as they are.
void yield_processors() {
    constexpr int niceness = 5;
    setpriority(PRIO_PROCESS, 0, niceness);
}

void go_first_when_memory_runs_out() {
    int const file = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (file >= 0) {
        constexpr std::array highest{'1', '0', '0', '0'};
        static_cast<void>(!write(file, highest.data(), highest.size()));
        close(file);
    }
}

int64_t memory_limit() {
    constexpr int64_t megabyte = 1 << 20;
    char const* const setting = getenv("WEBVIEW_MEMORY_LIMIT");
    int64_t const megabytes = setting ? strtol(setting, nullptr, 10) : 0;
    return megabytes > 0 ? megabytes * megabyte
                         : int64_t{sysconf(_SC_PHYS_PAGES)} * sysconf(_SC_PAGESIZE) / 2;
}

/// What the process has in memory now, in bytes.
int64_t memory_in_use(int statistics) {
    std::array<char, 128> text{};
    long pages = 0;
    if (pread(statistics, text.data(), text.size() - 1, 0) <= 0 ||
        sscanf(text.data(), "%*d %ld", &pages) != 1) {
        return 0;
    }
    return int64_t{pages} * sysconf(_SC_PAGESIZE);
}

/// In a thread of its own, since a script can keep the page's thread busy for ever.
void watch_memory_and_engine() {
    int const statistics = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    std::thread([statistics, limit = memory_limit()] {
        constexpr int64_t fastest_growth = 2'000'000;  // bytes per millisecond
        while (true) {
            int64_t const left = limit - memory_in_use(statistics);
            auto const pause = std::clamp<int64_t>(left / fastest_growth, 50, 2000);
            pollfd ended{engine, POLLIN, 0};
            if (left < 0 || poll(&ended, 1, static_cast<int>(pause)) > 0) {
                _exit(EXIT_FAILURE);
            }
        }
    }).detach();
}

}  // namespace

void take_fair_share() {
    go_first_when_memory_runs_out();
    watch_memory_and_engine();
    yield_processors();
}

void end_with_engine(int process) {
    int none = -1;
    if (!engine.compare_exchange_strong(none, process)) {
        close(process);
    }
}
