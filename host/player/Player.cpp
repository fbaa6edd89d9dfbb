#include "Player.h"

#include <atomic>
#include <cstdio>
#include <thread>
#include <utility>

#include "ScriptRunner.h"

namespace zarvik::player {

namespace {

/// The user has closed the window.
struct WindowClosed {};

using std::chrono::milliseconds;

// How long the main loop sleeps when nothing happens.
constexpr milliseconds roundTime{10};
constexpr milliseconds sampleTime{200};
constexpr milliseconds reportTime{1000};
constexpr milliseconds resizeLimit{1000};

// A window may stay open for days. What is waited for is looked at many times a second.
constexpr std::size_t keptCalls = 10'000;

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

}  // namespace

Player::Player(Options chosen)
    : options(std::move(chosen)),
      script(options.script.empty() ? Script() : Script::read(options.script)),
      printer(options.verbose),
      reports(Toolbar::target) {
    nextReport += reportTime;
    if (!options.record.empty()) {
        recorder = std::make_unique<SessionRecorder>(options.record);
    }
    if (options.window) {
        window = std::make_unique<host::WindowContext>("Zarvik Orvella", options.windowSize);
    }
    engine = std::make_unique<host::Engine>(
        host::Engine::Options{.library = options.library,
                              .turnsPerSecond = options.rate,
                              .context = window.get(),
                              .observer = [this](const host::Record& record) {
                                  if (options.verbose || record.target != Toolbar::target) {
                                      printer.print(record);
                                  }
                                  reports.take(record);
                              }});
    engine->recorder().keepNewest(keptCalls);
    const auto frames = window               ? Painter::Frames::window
                        : options.statistics ? Painter::Frames::offscreen
                                             : Painter::Frames::none;
    session = std::make_unique<Session>(
        *engine, reports, statistics, recorder.get(),
        Session::Settings{.pageSize = options.pageSize,
                          .window = options.windowSize,
                          .frames = frames,
                          .resizeWindow = [this](host::Size size) { resizeWindow(size); }});
    if (window) {
        input = std::make_unique<WindowInput>(*session, [this] { return window->clipboardText(); });
    }
}

Player::~Player() = default;

void Player::interrupt() {
    interrupted = true;
}

void Player::run() {
    try {
        play();
        while (window && !window->closed() && options.script.empty()) {
            takeTurn();
        }
    } catch (const WindowClosed&) {
        tellSummary();  // also while the first pages load it is the end that the user wants
        return;
    } catch (const Interrupted&) {
        tellSummary();
        throw;
    }
    tellSummary();
}

void Player::play() {
    const auto idle = [this] {
        takeTurn();
        if (window && window->closed()) {
            if (options.script.empty()) {
                throw WindowClosed();
            }
            throw StepError("the window was closed");
        }
    };
    ScriptRunner runner(*session, idle, options.timeoutSeconds);
    runner.run(scriptOfOptions());
    runner.waitForToolbar();
    runner.run(script);
}

Script Player::scriptOfOptions() const {
    Script steps;
    const auto add = [&](Step step) { steps.lines.push_back({.number = 0, .step = std::move(step)}); };
    for (const auto& page : options.pages) {
        add(Action(steps::Open{page}));
    }
    if (options.pages.size() > 1) {
        add(Action(steps::SelectView{1}));
    }
    if (!options.screenshot.empty()) {
        for (std::size_t i = 1; i <= options.pages.size(); ++i) {
            add(Check(steps::WaitForLoad{.view = static_cast<int>(i)}));
        }
        add(Check(steps::Screenshot{options.screenshot}));
    }
    return steps;
}

void Player::takeTurn() {
    if (interrupted) {
        throw Interrupted();
    }
    if (window) {
        handleWindow();
    } else {
        std::this_thread::sleep_for(roundTime);
    }
    session->update();
    if (options.statistics) {
        tellStatistics();
    }
}

void Player::handleWindow() {
    const auto events = window->takeEvents(std::chrono::duration<double>(roundTime).count());
    const auto size = window->framebufferSize();
    if (size.width > 0 && size.height > 0 && Statistics::Clock::now() >= windowResizeEnd &&
        (size.width != session->window().width || size.height != session->window().height)) {
        session->perform(steps::ResizeWindow{size});
    }
    for (std::size_t i = 0; i < events.size(); ++i) {
        const auto moves = [&](std::size_t at) {
            return at < events.size() && events[at].kind == host::WindowEvent::Kind::pointerMoved;
        };
        if (moves(i) && moves(i + 1)) {
            continue;  // only where the pointer has got to matters
        }
        try {
            input->handle(events[i]);
        } catch (const StepError& error) {
            std::fprintf(stderr, "%s\n", error.what());
        }
    }
}

void Player::resizeWindow(host::Size size) {
    if (!window) {
        return;
    }
    const auto current = window->framebufferSize();
    if (size.width != current.width || size.height != current.height) {
        window->resize(size);
        windowResizeEnd = Statistics::Clock::now() + resizeLimit;
    }
}

void Player::tellSummary() {
    if (options.statistics) {
        statistics.sample();
        std::printf("\n%s\n", statistics.summary().c_str());
    }
}

void Player::tellStatistics() {
    const auto now = Statistics::Clock::now();
    if (now >= nextSample) {
        statistics.sample();
        nextSample = now + sampleTime;
    }
    if (window && now >= nextReport) {
        std::printf("%s\n", statistics.lastInterval().c_str());
        std::fflush(stdout);
        nextReport = now + reportTime;
    }
}

}  // namespace zarvik::player
