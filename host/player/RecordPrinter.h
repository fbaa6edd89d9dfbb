#pragma once

#include <chrono>
#include <cstdio>

#include "zarvik/host/Recorder.h"

namespace zarvik::player {

/// Prints what the plug-in reports, one line each: messages and data results to standard output, log lines to
/// standard error. Any thread.
class RecordPrinter {
  public:
    /// `verbose`: information lines too.
    explicit RecordPrinter(bool verbose) : verbose(verbose) {}

    void print(const host::Record& record) const;

  private:
    const bool verbose;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

}  // namespace zarvik::player
