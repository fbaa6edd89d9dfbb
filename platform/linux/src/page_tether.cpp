#include "page_tether.h"

#include <fcntl.h>
#include <glib.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <set>
#include <thread>

namespace runtime {

namespace {

std::set<page_tether const*>& all_tethers() {
    static auto& tethers = *new std::set<page_tether const*>();
    return tethers;
}

/// How many views could take all processors.
size_t crowd() {
    return std::max(1U, std::thread::hardware_concurrency());
}

}  // namespace

page_tether::page_tether() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) == 0) {
        reading = file_descriptor(ends[0]);
        writing = file_descriptor(ends[1]);
    } else {
        g_critical("No pipe for the processes of pages: %s", g_strerror(errno));
    }
    auto& all = all_tethers();
    all.insert(this);
    if (all.size() == crowd()) {
        for (auto const* tether : all) {
            tether->yield(true);
        }
    } else if (all.size() > crowd()) {
        yield(true);
    }
}

page_tether::~page_tether() {
    auto& all = all_tethers();
    all.erase(this);
    if (all.size() + 1 == crowd()) {
        // Only for processes that begin from now on: nobody can take back that it yields.
        for (auto const* tether : all) {
            tether->yield(false);
        }
    }
}

void page_tether::yield(bool begin) const {
    char sign = 0;
    static_cast<void>(begin ? write(writing.get(), &sign, 1) : read(reading.get(), &sign, 1));
}

}  // namespace runtime
