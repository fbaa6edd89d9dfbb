#include "ScriptRunner.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <optional>
#include <system_error>
#include <utility>

#include "Json.h"
#include "zarvik/host/Png.h"

namespace zarvik::player {

namespace {

using std::chrono::milliseconds;

/// Calls the function with each place of the action that can be an element of the page.
void forEachPlace(Action& action, const std::function<void(Place&)>& visit) {
    std::visit(
        [&](auto& step) {
            if constexpr (requires { step.place; }) {
                visit(step.place);
            } else if constexpr (requires { step.from; }) {
                visit(step.from);
                visit(step.to);
            }
        },
        action);
}

}  // namespace

void ScriptRunner::run(const Script& script) {
    for (const auto& [number, step] : script.lines) {
        try {
            idle();
            if (const auto* action = std::get_if<Action>(&step)) {
                session.perform(withElements(*action));
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
    std::printf("%s\n", evaluate(step.expression).c_str());
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
    std::optional<LoadEnd> end;
    waitUntil([&] { return (end = session.takeEndOfLoad(page)).has_value(); },
              [&] { return "no load has ended (" + session.stateOf(page).url + ")"; });
    if (end->success != step.success) {
        throw StepError(end->success ? "the page was loaded after all" : end->reason);
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

std::string ScriptRunner::evaluate(const std::string& script) {
    const auto& view = session.viewOf(session.currentPage());
    const auto evaluation = view.evaluation(script);
    std::optional<std::string> result;
    waitUntil([&] { return (result = view.resultOf(evaluation, milliseconds(0))).has_value(); },
              [] { return "the page does not answer"; });
    return *result;
}

void ScriptRunner::waitForPage(const std::string& condition, const std::string& complaint) {
    const auto& view = session.viewOf(session.currentPage());
    auto evaluation = view.evaluation(condition);
    std::string last = "the page does not answer";
    waitUntil(
        [&] {
            if (const auto result = view.resultOf(evaluation, milliseconds(0))) {
                last = *result;
                if (last != "true") {
                    evaluation = view.evaluation(condition);
                }
            }
            return last == "true";
        },
        [&] { return complaint + (last == "false" ? "" : " (" + last + ")"); });
}

Action ScriptRunner::withElements(Action action) {
    forEachPlace(action, [this](Place& place) {
        if (auto* element = std::get_if<Element>(&place)) {
            element->middle = middleOf(element->selector);
        }
    });
    return action;
}

Point ScriptRunner::middleOf(const std::string& selector) {
    const auto answer = evaluate(
        "(function (selector) { var element = document.querySelector(selector); if (!element) { return "
        "'none'; } "
        "var box = element.getBoundingClientRect(); "
        "return 'at ' + (box.left + box.width / 2) + ' ' + (box.top + box.height / 2); })(" +
        toScript(selector) + ")");
    if (answer == "none") {
        throw StepError("the page has no element '" + selector + "'");
    }
    Point middle;
    const char* const end = answer.data() + answer.size();
    const auto [space, errorInX] = std::from_chars(std::min(answer.data() + 3, end), end, middle.x);
    const auto [last, errorInY] = std::from_chars(std::min(space + 1, end), end, middle.y);
    if (!answer.starts_with("at ") || errorInX != std::errc() || errorInY != std::errc() || last != end) {
        throw StepError("'" + selector + "' cannot be looked up: " + answer);
    }
    return middle;
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
