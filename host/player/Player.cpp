#include "Player.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <utility>

#include "welcome.h"
#include "zarvik/host/Png.h"
#include "zarvik/host/WindowContext.h"

namespace zarvik::player {

namespace {

using std::chrono::milliseconds;
using std::chrono::steady_clock;

// How soon an interruption is noticed.
constexpr milliseconds patience{100};

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler sets it");

/// Waits in short steps, so that an interruption ends the wait.
template <typename Step>
void waitFor(const Step& step, steady_clock::time_point deadline, const std::string& whatFor) {
    while (!step()) {
        if (interrupted) {
            throw Interrupted();
        }
        if (steady_clock::now() >= deadline) {
            throw std::runtime_error("Timed out: " + whatFor + ".");
        }
    }
}

}  // namespace

Player::Player(Options options) : options(std::move(options)), printer(this->options.verbose) {}

void Player::interrupt() {
    interrupted = true;
}

void Player::runHeadless() {
    const auto deadline = steady_clock::now() + std::chrono::duration_cast<steady_clock::duration>(
                                                    std::chrono::duration<double>(options.timeoutSeconds));
    host::Engine engine(engineOptions(nullptr));
    const Views views = createViews(engine);
    for (const auto& view : views) {
        waitUntilLoaded(*view, deadline);
    }
    const auto picture =
        engine.renderThread().run([&] { return host::Scene(sceneSize()).drawToImage(surfaces(views)); });
    host::writePng(options.screenshot, picture);
    std::printf("Wrote %s (%d x %d).\n", options.screenshot.c_str(), picture.width, picture.height);
}

void Player::runInWindow() {
    host::WindowContext window("Zarvik Orvella", sceneSize());
    host::Engine engine(engineOptions(&window));
    const Views views = createViews(engine);
    // The drawing owns the scene, so the render thread makes and deletes it.
    auto scene = engine.renderThread().run([&] { return std::make_shared<host::Scene>(sceneSize()); });
    engine.setDrawing(
        [&, scene = std::move(scene)] { scene->drawToWindow(surfaces(views), window.framebufferSize()); });
    const double eventWait = std::chrono::duration<double>(patience).count();
    while (window.handleEvents(eventWait) && !interrupted) {
    }
    engine.setDrawing(nullptr);
    if (interrupted) {
        throw Interrupted();
    }
}

host::Engine::Options Player::engineOptions(host::GLContext* context) const {
    return {.library = options.library,
            .turnsPerSecond = options.rate,
            .context = context,
            .observer = [this](const host::Record& record) { printer.print(record); }};
}

Player::Views Player::createViews(host::Engine& engine) const {
    Views views;
    const auto add = [&]() -> host::View& {
        return *views.emplace_back(std::make_unique<host::View>(engine, options.size));
    };
    for (const auto& url : options.urls) {
        add().loadUrl(url);
    }
    if (options.urls.empty()) {
        add().loadHtml(welcomeHtml);
    }
    return views;
}

void Player::waitUntilLoaded(const host::View& view, steady_clock::time_point deadline) const {
    host::LoadResult result;
    waitFor(
        [&] {
            result = view.waitForLoad(patience);
            return result.outcome != host::LoadResult::Outcome::timedOut;
        },
        deadline, "the page has not loaded");
    if (!result) {
        throw std::runtime_error(result.reason);
    }
    waitFor([&] { return view.waitUntilPainted(result.time, patience); }, deadline,
            "the page has not been painted");
}

host::Size Player::sceneSize() const {
    const int count = std::max(1, static_cast<int>(options.urls.size()));
    return {.width = options.size.width * count, .height = options.size.height};
}

std::vector<host::Scene::Surface> Player::surfaces(const Views& views) const {
    std::vector<host::Scene::Surface> result;
    const auto width = static_cast<float>(options.size.width);
    float x = 0;
    for (const auto& view : views) {
        if (const unsigned texture = view->glTexture()) {
            result.push_back({texture, x, 0, width, static_cast<float>(options.size.height)});
        }
        x += width;
    }
    return result;
}

}  // namespace zarvik::player
