#include "Measurement.h"

#include <unistd.h>

namespace zarvik::bench {

namespace {

double secondsIn(std::chrono::nanoseconds time) {
    return std::chrono::duration<double>(time).count();
}

}  // namespace

Reading Reading::now(std::uint64_t frames, std::chrono::nanoseconds renderThread) {
    return {.time = std::chrono::steady_clock::now(),
            .frames = frames,
            .processes = host::processTreeTimes(),
            .renderThread = renderThread};
}

Measurement Measurement::between(const Reading& begin, const Reading& end) {
    return {.seconds = secondsIn(end.time - begin.time),
            .frames = static_cast<double>(end.frames - begin.frames),
            .treeTime = secondsIn(host::usedBetween(begin.processes, end.processes)),
            .ownTime = secondsIn(end.processes.at(getpid()) - begin.processes.at(getpid())),
            .renderThreadTime = secondsIn(end.renderThread - begin.renderThread)};
}

}  // namespace zarvik::bench
