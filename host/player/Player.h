#pragma once

#include <memory>
#include <stdexcept>

#include "Options.h"
#include "PageReports.h"
#include "RecordPrinter.h"
#include "Script.h"
#include "Session.h"
#include "Statistics.h"
#include "WindowInput.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/WindowContext.h"

namespace zarvik::player {

/// The user pressed Ctrl-C.
struct Interrupted : std::runtime_error {
    Interrupted() : std::runtime_error("Interrupted.") {}
};

/// The program: an engine with a session in it, and a window or none around it.
class Player {
  public:
    /// Throws ScriptError if the script cannot be read, std::runtime_error with the reason of any other
    /// failure.
    explicit Player(Options options);
    ~Player();
    Player(const Player&) = delete;
    Player& operator=(const Player&) = delete;

    /// Until the script has ended, the picture is written or the window is closed. Throws ScriptFailure, or
    /// std::runtime_error with the reason of any other failure.
    void run();

    /// Makes run() throw Interrupted soon. Signal handlers may call it.
    static void interrupt();

  private:
    /// What the options ask for when there is no script: the pages, and without a window a picture of them.
    Script scriptOfOptions() const;
    void play();
    /// One round of the main loop: events, toolbar, statistics. Throws Interrupted.
    void takeTurn();
    void handleWindow();
    void tellStatistics();
    void tellSummary();
    void resizeWindow(host::Size size);

    const Options options;
    const Script script;
    const RecordPrinter printer;
    PageReports reports;
    Statistics statistics;
    Statistics::Clock::time_point nextSample;
    Statistics::Clock::time_point nextReport = Statistics::Clock::now();
    Statistics::Clock::time_point windowResizeEnd;  // until then the window may still have its old size
    std::unique_ptr<SessionRecorder> recorder;
    std::unique_ptr<host::WindowContext> window;
    std::unique_ptr<host::Engine> engine;
    std::unique_ptr<Session> session;
    std::unique_ptr<WindowInput> input;
};

}  // namespace zarvik::player
