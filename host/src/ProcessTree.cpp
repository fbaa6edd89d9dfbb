#include "zarvik/host/ProcessTree.h"

#include <unistd.h>

#include <charconv>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <string>

namespace zarvik::host {

namespace {

std::optional<pid_t> parsePid(const std::string& text) {
    pid_t pid = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), pid);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(pid) : std::nullopt;
}

/// Nothing if the process has ended.
std::optional<pid_t> parentOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string line;
    std::getline(file, line);
    const auto name = line.rfind(')');  // the name before it may contain anything
    if (name == std::string::npos) {
        return std::nullopt;
    }
    const auto state = name + 2;
    const auto parent = state + 2;
    return parsePid(line.substr(parent, line.find(' ', parent) - parent));
}

/// From the process's own clock: /proc counts in hundredths of a second, too coarse for a page at rest.
std::optional<std::chrono::nanoseconds> timeOf(pid_t pid) {
    clockid_t clock = 0;
    timespec time{};
    if (clock_getcpuclockid(pid, &clock) != 0 || clock_gettime(clock, &time) != 0) {
        return std::nullopt;
    }
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

std::multimap<pid_t, pid_t> childrenByParent() {
    std::multimap<pid_t, pid_t> children;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        if (const auto pid = parsePid(entry.path().filename())) {
            if (const auto parent = parentOf(*pid)) {
                children.emplace(*parent, *pid);
            }
        }
    }
    return children;
}

void addTree(ProcessTimes& times, const std::multimap<pid_t, pid_t>& children, pid_t root) {
    if (const auto time = timeOf(root)) {
        times.emplace(root, *time);
    }
    const auto [first, last] = children.equal_range(root);
    for (auto child = first; child != last; ++child) {
        addTree(times, children, child->second);
    }
}

}  // namespace

ProcessTimes processTreeTimes() {
    return processTreeTimes(getpid());
}

ProcessTimes processTreeTimes(pid_t root) {
    ProcessTimes times;
    addTree(times, childrenByParent(), root);
    return times;
}

std::chrono::nanoseconds usedBetween(const ProcessTimes& begin, const ProcessTimes& end) {
    std::chrono::nanoseconds used{};
    for (const auto& [pid, time] : end) {
        used += time;
    }
    for (const auto& [pid, time] : begin) {
        if (!end.contains(pid)) {
            throw std::runtime_error("One of the browser's processes ended during the measurement.");
        }
        used -= time;
    }
    return used;
}

}  // namespace zarvik::host
