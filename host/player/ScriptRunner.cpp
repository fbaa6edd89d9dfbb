#include "ScriptRunner.h"

#include <algorithm>
#include <cstdio>

#include "Json.h"
#include "zarvik/host/Png.h"

namespace zarvik::player {

namespace {

using std::chrono::milliseconds;

// A page that is busy answers late; meanwhile the window has to live on.
constexpr milliseconds answerSlice{200};

}  // namespace

void ScriptRunner::run(const Script& script) {
    for (const auto& [number, step] : script.lines) {
        try {
            idle();
            if (const auto* action = std::get_if<Action>(&step)) {
                session.perform(*action);
            } else {
                std::visit([this](const auto& kind) { check(kind); }, std::get<Check>(step));
            }
        } catch (const StepError& error) {
            const auto place = script.name.empty() ? "" : script.name + ":" + std::to_string(number) + ": ";
            throw ScriptFailure(place + error.what());
        }
    }
}

void ScriptRunner::waitForToolbar() {
    const auto begin = Clock::now();
    while (!session.toolbarIsReady()) {
        if (Clock::now() - begin >= timeout) {
            throw ScriptFailure("The toolbar's page was not loaded.");
        }
        idle();
    }
}

void ScriptRunner::waitUntil(const std::function<bool()>& satisfied,
                             const std::function<std::string()>& complaint) {
    const auto begin = Clock::now();
    while (!satisfied()) {
        if (Clock::now() - begin >= timeout) {
            char time[32];
            std::snprintf(time, sizeof time, "timed out after %g s: ", timeout.count());
            throw StepError(time + complaint());
        }
        idle();
    }
}

void ScriptRunner::check(const steps::Screenshot& step) {
    check(steps::WaitForPaint{});
    try {
        const auto picture = session.picture();
        host::writePng(step.file, picture);
        std::printf("Wrote %s (%d x %d).\n", step.file.c_str(), picture.width, picture.height);
        std::fflush(stdout);
    } catch (const std::runtime_error& error) {
        throw StepError(error.what());
    }
}

void ScriptRunner::check(const steps::Print& step) {
    const auto answer = session.viewOf(session.currentPage())
                            .evaluate(step.expression, std::chrono::duration_cast<milliseconds>(timeout));
    if (!answer) {
        throw StepError("the page does not answer");
    }
    std::printf("%s\n", answer->c_str());
    std::fflush(stdout);
}

void ScriptRunner::check(const steps::Wait& step) {
    const auto end = Clock::now() + std::chrono::duration<double>(step.seconds);
    while (Clock::now() < end) {
        idle();
    }
}

void ScriptRunner::check(const steps::WaitForLoad& step) {
    const auto page = step.view == 0 ? session.currentPage() : static_cast<std::size_t>(step.view) - 1;
    session.viewOf(page);  // throws if there is none
    auto& awaited = session.awaitedLoads(page);
    waitUntil([&] { return session.stateOf(page).ends.size() > awaited; },
              [&] { return "no load has ended (" + session.stateOf(page).url + ")"; });
    const auto end = session.stateOf(page).ends[awaited++];
    if (end.success != step.success) {
        throw StepError(end.success ? "the page was loaded after all" : end.reason);
    }
}

void ScriptRunner::check(const steps::WaitForPaint&) {
    const auto painted = [&](const host::View& view, bool failed) {
        // A page that could not be loaded may never get a picture.
        return (failed && view.uploads() == 0) ||
               view.waitUntilPainted(session.lastChange(), milliseconds(0));
    };
    waitUntil(
        [&] {
            for (std::size_t i = 0; i < session.pageCount(); ++i) {
                if (!painted(session.viewOf(i), !session.stateOf(i).failure.empty())) {
                    return false;
                }
            }
            return painted(session.toolbarView(), false);
        },
        [] { return "the pages have not been painted"; });
}

void ScriptRunner::waitForPage(const std::string& condition, const std::string& complaint) {
    const auto& view = session.viewOf(session.currentPage());
    std::string last;
    waitUntil(
        [&] {
            const auto answer = view.evaluate(
                condition, std::min(answerSlice, std::chrono::duration_cast<milliseconds>(timeout)));
            last = answer.value_or("the page does not answer");
            return last == "true";
        },
        [&] { return complaint + (last == "false" ? "" : " (" + last + ")"); });
}

void ScriptRunner::check(const steps::WaitForText& step) {
    waitForPage("document.body.innerText.indexOf(" + toScript(step.text) + ") >= 0",
                "the page has no text '" + step.text + "'");
}

void ScriptRunner::check(const steps::WaitForElement& step) {
    waitForPage("document.querySelector(" + toScript(step.selector) + ") !== null",
                "the page has no element '" + step.selector + "'");
}

void ScriptRunner::check(const steps::WaitForTruth& step) {
    waitForPage("Boolean(eval(" + toScript(step.expression) + "))", "this is not true: " + step.expression);
}

void ScriptRunner::check(const steps::Timeout& step) {
    timeout = std::chrono::duration<double>(step.seconds);
}

}  // namespace zarvik::player
