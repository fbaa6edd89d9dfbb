#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>

namespace zarvik::host {

/// The processor time, user and system, that each live process of a tree has used since it began.
using ProcessTimes = std::map<pid_t, std::chrono::nanoseconds>;

/// This process and all its descendants: those of the browser too.
ProcessTimes processTreeTimes();
/// Another process and its descendants; nothing if there is no such process.
ProcessTimes processTreeTimes(pid_t root);

/// What the tree used between two readings. Throws std::runtime_error if a process ended in between, whose
/// time is then unknown.
std::chrono::nanoseconds usedBetween(const ProcessTimes& begin, const ProcessTimes& end);

}  // namespace zarvik::host
