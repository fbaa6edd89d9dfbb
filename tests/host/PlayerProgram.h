#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

#include "support/TemporaryFolder.h"

/// The player as a process of its own, in a folder of its own.
class PlayerProgram {
  public:
    /// Starts it.
    explicit PlayerProgram(std::vector<std::string> arguments);
    /// Kills it if it still runs.
    ~PlayerProgram();
    PlayerProgram(const PlayerProgram&) = delete;
    PlayerProgram& operator=(const PlayerProgram&) = delete;

    /// Waits for the end and gives the exit code; -1 if a signal ended it or it takes too long.
    int wait();
    /// Asks it to end.
    void interrupt() const;

    /// What it has printed so far, errors too.
    std::string output() const;

  private:
    TemporaryFolder folder;
    pid_t process = 0;
};

struct PlayerResult {
    int exitCode = 0;
    std::string output;
};

/// Runs it to its end.
PlayerResult runPlayer(std::vector<std::string> arguments);
