#include "Subject.h"

#include <csignal>
#include <cstdlib>

#include "support/Processes.h"

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

void Subject::killPageProcesses() {
    for (const pid_t process : pageProcesses()) {
        kill(process, SIGKILL);
    }
}

}  // namespace zarvik::bench
