#pragma once

#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>

#include "Script.h"
#include "Session.h"

namespace zarvik::player {

/// A step of a script failed. The message names the file, the line and the reason.
struct ScriptFailure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Plays a script in a session: performs its actions, and does itself what looks and waits. Main thread.
class ScriptRunner {
  public:
    /// `idle` is called again and again while a step waits, and may throw to end the script.
    ScriptRunner(Session& session, std::function<void()> idle, double timeoutSeconds)
        : session(session), idle(std::move(idle)), timeout(timeoutSeconds) {}

    // Both throw ScriptFailure, and what `idle` throws.

    /// A script may use the toolbar from its first line on, and is played after this.
    void waitForToolbar();
    void run(const Script& script);

  private:
    using Clock = std::chrono::steady_clock;

    void check(const steps::Screenshot& step);
    void check(const steps::Print& step);
    void check(const steps::Wait& step);
    void check(const steps::WaitForLoad& step);
    void check(const steps::WaitForPaint& step);
    void check(const steps::WaitForText& step);
    void check(const steps::WaitForElement& step);
    void check(const steps::WaitForTruth& step);
    void check(const steps::Timeout& step);

    /// Asks again and again until it is true. Throws StepError when the time is up.
    void waitUntil(const std::function<bool()>& satisfied, const std::function<std::string()>& complaint);
    /// A script's result in the current page.
    std::string evaluate(const std::string& script);
    /// Waits until a script in the current page gives true.
    void waitForPage(const std::string& condition, const std::string& complaint);
    /// The action with its elements looked up in the current page.
    Action withElements(Action action);
    Point middleOf(const std::string& selector);

    Session& session;
    const std::function<void()> idle;
    std::chrono::duration<double> timeout;
};

}  // namespace zarvik::player
