#include "Measurement.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>
#include <string_view>

namespace zarvik::bench {

namespace {

double secondsIn(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

/// The process at the other end of the display's socket; 0 if there is none on this machine.
pid_t findDisplayServer() {
    const char* const display = std::getenv("DISPLAY");
    if (!display || *display != ':') {
        return 0;
    }
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::snprintf(address.sun_path, sizeof(address.sun_path), "/tmp/.X11-unix/X%d", std::atoi(display + 1));
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (connection < 0) {
        return 0;
    }
    ucred peer{};
    socklen_t length = sizeof(peer);
    const bool known =
        connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0 &&
        getsockopt(connection, SOL_SOCKET, SO_PEERCRED, &peer, &length) == 0;
    close(connection);
    return known ? peer.pid : 0;
}

pid_t displayServer() {
    static const pid_t server = findDisplayServer();
    return server;
}

/// Of the lines of that kind: "Pss" is all, "Pss_Anon" what the process allocated for itself.
std::optional<double> megabytesOf(pid_t process, std::string_view kind) {
    std::ifstream file("/proc/" + std::to_string(process) + "/smaps_rollup");
    std::string word;
    while (file >> word) {
        double kilobytes = 0;
        if (word.ends_with(':') && std::string_view(word).substr(0, word.size() - 1) == kind &&
            file >> kilobytes) {
            return kilobytes * 1.024e-3;
        }
    }
    return std::nullopt;
}

}  // namespace

Reading Reading::now(std::uint64_t frames, std::chrono::nanoseconds renderThread) {
    auto processes = host::processTreeTimes();
    if (displayServer() != 0) {
        processes.merge(host::processTreeTimes(displayServer()));
    }
    return {.time = std::chrono::steady_clock::now(),
            .frames = frames,
            .processes = std::move(processes),
            .renderThread = renderThread};
}

Measurement Measurement::between(const Reading& begin, const Reading& end) {
    return {.seconds = secondsIn(end.time - begin.time),
            .frames = static_cast<double>(end.frames - begin.frames),
            .treeTime = secondsIn(host::usedBetween(begin.processes, end.processes)),
            .ownTime = secondsIn(end.processes.at(getpid()) - begin.processes.at(getpid())),
            .renderThreadTime = secondsIn(end.renderThread - begin.renderThread)};
}

std::optional<MemoryUse> MemoryUse::now(bool withDisplayServer) {
    auto processes = host::processTreeTimes();
    if (withDisplayServer && displayServer() != 0) {
        processes.merge(host::processTreeTimes(displayServer()));
    }
    MemoryUse use;
    for (const auto& [process, time] : processes) {
        const auto megabytes = megabytesOf(process, "Pss");
        if (!megabytes) {
            return std::nullopt;
        }
        use.tree += *megabytes;
    }
    use.own = megabytesOf(getpid(), "Pss_Anon").value() + megabytesOf(getpid(), "Pss_Shmem").value();
    return use;
}

std::chrono::steady_clock::time_point startOfThisProcess() {
    std::ifstream file("/proc/self/stat");
    std::string line;
    std::getline(file, line);
    // The name may contain anything. The start is the 20th field after it, in ticks since the machine's own.
    std::size_t field = line.rfind(')') + 1;
    for (int i = 0; i < 19; ++i) {
        field = line.find(' ', field + 1);
    }
    const double started = std::stod(line.substr(field)) / static_cast<double>(sysconf(_SC_CLK_TCK));
    timespec now{};
    clock_gettime(CLOCK_BOOTTIME, &now);
    const std::chrono::duration<double> age(static_cast<double>(now.tv_sec) +
                                            static_cast<double>(now.tv_nsec) / 1e9 - started);
    return std::chrono::steady_clock::now() -
           std::chrono::duration_cast<std::chrono::steady_clock::duration>(age);
}

}  // namespace zarvik::bench
