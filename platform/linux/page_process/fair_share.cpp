#include "fair_share.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <system_error>
#include <thread>

namespace {

std::atomic<int> tether = -1;

/// Wakes the watching thread when that has come.
int const news = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);

/// Lets a thread yield, and those that it starts later.
void yield_processors(pid_t thread) {
    constexpr int niceness = 5;
    setpriority(PRIO_PROCESS, static_cast<id_t>(thread), niceness);
}

std::set<pid_t> all_threads() {
    std::set<pid_t> threads;
    std::error_code none;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/task", none)) {
        threads.insert(atoi(entry.path().filename().c_str()));
    }
    return threads;
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
void watch() {
    int const statistics = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    // Those that exchange messages run already.
    std::thread([statistics, limit = memory_limit(), trusted = all_threads()]() mutable {
        trusted.insert(gettid());
        constexpr int64_t fastest_growth = 2'000'000;  // bytes per millisecond
        bool yielding = false;
        while (true) {
            int64_t const left = limit - memory_in_use(statistics);
            auto const pause = std::clamp<int64_t>(left / fastest_growth, 50, 2000);
            // That it is to yield stays there to be read; its end is always told.
            short const sign = yielding ? 0 : POLLIN;
            std::array<pollfd, 2> events{{{tether, sign, 0}, {news, POLLIN, 0}}};
            poll(events.data(), events.size(), static_cast<int>(pause));
            if (left < 0 || (events[0].revents & POLLHUP) != 0) {
                _exit(EXIT_FAILURE);
            }
            if (events[0].revents != 0) {
                yield_processors(getpid());
                yielding = true;
            }
            for (auto const thread : all_threads()) {
                if (!trusted.contains(thread)) {
                    yield_processors(thread);
                }
            }
            eventfd_t count = 0;
            eventfd_read(news, &count);
        }
    }).detach();
}

}  // namespace

void take_fair_share() {
    go_first_when_memory_runs_out();
    watch();
}

void follow(int descriptor) {
    int none = -1;
    if (!tether.compare_exchange_strong(none, descriptor)) {
        close(descriptor);
    }
    eventfd_write(news, 1);
}
