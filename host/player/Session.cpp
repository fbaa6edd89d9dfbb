#include "Session.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "Address.h"

namespace zarvik::player {

namespace {

using Receiver = InputRouter::Receiver;
using std::chrono::steady_clock;

constexpr int dragSteps = 12;
// Pages that load one document after the other while no script waits for them.
constexpr std::size_t mostEnds = 1000;

host::Size toolbarSize(host::Size window) {
    return {.width = window.width, .height = Scenery::toolbarHeight};
}

}  // namespace

Session::Session(host::Engine& engine, PageReports& reports, Statistics& statistics,
                 SessionRecorder* recorder, const Settings& settings)
    : engine(engine),
      reports(reports),
      recorder(recorder),
      pageSize(settings.pageSize),
      resizeWindow(settings.resizeWindow),
      toolbar(engine, toolbarSize(settings.window)),
      painter(engine, statistics, settings.frames),
      router(engine.plugin(), statistics) {
    scenery.window = settings.window;
    rebuildStage();
    record(steps::ResizeWindow{settings.window});
}

Session::~Session() = default;

void Session::perform(const Action& action) {
    noteEndsOfLoads();  // what ended before the action is recorded before it
    lastAction = steady_clock::now();
    std::visit([this](const auto& step) { run(step); }, action);
}

void Session::update() {
    painter.throwFailure();
    for (const auto& message : reports.takeToolbarMessages()) {
        if (const auto action = toolbar.actionFor(message)) {
            try {
                perform(*action);
            } catch (const StepError& error) {
                std::fprintf(stderr, "%s\n", error.what());
            }
        }
    }
    noteEndsOfLoads();
    if (!pages.empty()) {
        toolbar.show(stateOf(currentPage()), currentPage() + 1, pages.size());
    }
}

void Session::noteEndsOfLoads() {
    for (std::size_t i = 0; i < pages.size(); ++i) {
        Page& page = pages[i];
        for (auto& end : reports.takeEndsOfLoads(page.view->target())) {
            if (recorder) {
                recorder->loadEnded(i + 1, end.success);
            }
            engine.plugin().WebView_canGoBack(page.view->handle());
            engine.plugin().WebView_canGoForward(page.view->handle());
            lastEndOfLoad = std::max(lastEndOfLoad, end.time);
            page.ends.push_back(std::move(end));
            if (page.ends.size() > mostEnds) {
                page.ends.pop_front();
            }
        }
    }
}

std::optional<LoadEnd> Session::takeEndOfLoad(std::size_t page) {
    noteEndsOfLoads();
    auto& ends = pages.at(page).ends;
    if (ends.empty()) {
        return std::nullopt;
    }
    auto end = std::move(ends.front());
    ends.pop_front();
    return end;
}

void Session::editAddress() {
    router.focusToolbar();
    toolbar.editAddress();
}

void Session::leaveAddress() {
    toolbar.leaveAddress();
    if (!pages.empty()) {
        router.focusPage(currentPage());
    }
}

const host::View& Session::viewOf(std::size_t page) const {
    if (page >= pages.size()) {
        throw StepError(pages.empty() ? "no page is open"
                                      : "there is no view " + std::to_string(page + 1) + ", only " +
                                            std::to_string(pages.size()));
    }
    return *pages[page].view;
}

PageState Session::stateOf(std::size_t page) const {
    return reports.of(viewOf(page).target());
}

void Session::record(const Action& action, Receiver receiver) {
    if (recorder && receiver == Receiver::page) {
        recorder->performed(action);
    }
}

Session::Page& Session::current() {
    viewOf(currentPage());  // throws if there is none
    return pages[currentPage()];
}

Session::Page& Session::currentForNewLoad() {
    Page& page = current();
    page.ends.clear();
    return page;
}

void Session::rebuildStage() {
    std::vector<host::Size> sizes;
    scenery.pages.clear();
    for (const Page& page : pages) {
        sizes.push_back(page.size);
        scenery.pages.push_back({.view = page.view.get(), .size = page.size});
    }
    scenery.stage = std::make_shared<Stage>(sizes);
    frameScene();
}

void Session::frameScene() {
    if (!cameraMoved) {
        scenery.camera = scenery.stage->camera(scenery.window, Scenery::toolbarHeight);
    }
    showScenery();
}

void Session::showScenery() {
    scenery.toolbar = {.view = &toolbar.view(), .size = toolbar.size()};
    router.setScenery(scenery);
    painter.show(scenery);
}

void Session::run(const steps::Open& step) {
    auto& page = pages.emplace_back(std::make_unique<host::View>(engine, pageSize), pageSize);
    rebuildStage();
    router.focusPage(pages.size() - 1);
    record(step);
    record(steps::ResizePage{pageSize});
    beginLoad(page, step.page);
}

void Session::run(const steps::Load& step) {
    if (pages.empty()) {
        run(steps::Open{step.page});
        return;
    }
    record(step);
    beginLoad(current(), step.page);
}

void Session::beginLoad(Page& page, const std::string& text) {
    page.ends.clear();
    try {
        const auto url = toUrl(text);
        if (const char* html = bundledPage(url)) {
            page.view->loadHtml(html);
        } else {
            page.view->loadUrl(url);
        }
    } catch (const std::invalid_argument& error) {
        throw StepError(error.what());
    }
}

void Session::run(const steps::Back& step) {
    engine.plugin().WebView_goBack(currentForNewLoad().view->handle());
    record(step);
}

void Session::run(const steps::Forward& step) {
    engine.plugin().WebView_goForward(currentForNewLoad().view->handle());
    record(step);
}

void Session::run(const steps::Reload& step) {
    engine.plugin().WebView_reload(currentForNewLoad().view->handle());
    record(step);
}

void Session::run(const steps::Stop& step) {
    engine.plugin().WebView_stopLoad(current().view->handle());
    record(step);
}

void Session::run(const steps::SelectView& step) {
    const auto page = static_cast<std::size_t>(step.number) - 1;
    viewOf(page);  // throws if there is none
    router.focusPage(page);
    record(step);
}

void Session::run(const steps::ResizePage& step) {
    engine.plugin().WebView_resize(current().view->handle(), step.size.width, step.size.height);
    current().size = step.size;
    rebuildStage();
    record(step);
}

void Session::run(const steps::Move& step) {
    const Point point = resolve(step.place);
    record(steps::Move{WindowPoint{point}}, router.move(point));
}

void Session::run(const steps::Press& step) {
    const Point point = resolve(step.place);
    record(steps::Press{WindowPoint{point}, step.button, step.clickCount},
           router.press(point, step.button, step.clickCount));
}

void Session::run(const steps::Release& step) {
    const Point point = resolve(step.place);
    record(steps::Release{WindowPoint{point}, step.button, step.clickCount},
           router.release(point, step.button, step.clickCount));
}

void Session::run(const steps::Click& step) {
    // Resolved once: what the press does may move the element.
    const WindowPoint place{resolve(step.place)};
    run(steps::Press{place, step.button, 1});
    run(steps::Release{place, step.button, 1});
    if (step.twice) {
        run(steps::Press{place, step.button, 2});
        run(steps::Release{place, step.button, 2});
    }
}

void Session::run(const steps::Drag& step) {
    const Point from = resolve(step.from);
    const Point to = resolve(step.to);
    run(steps::Press{.place = WindowPoint{from}});
    for (int i = 1; i <= dragSteps; ++i) {
        const double part = static_cast<double>(i) / dragSteps;
        run(steps::Move{WindowPoint{{from.x + (to.x - from.x) * part, from.y + (to.y - from.y) * part}}});
    }
    run(steps::Release{.place = WindowPoint{to}});
}

void Session::run(const steps::Scroll& step) {
    if (!step.hasPlace) {
        record(step, router.scrollPage(step.delta));
        return;
    }
    const Point point = resolve(step.place);
    record(steps::Scroll{.delta = step.delta, .hasPlace = true, .place = WindowPoint{point}},
           router.scroll(point, step.delta));
}

void Session::run(const steps::Type& step) {
    record(step, router.type(step.text));
}

void Session::run(const steps::Key& step) {
    record(step, router.key(step.name));
}

void Session::run(const steps::ResizeWindow& step) {
    scenery.window = step.size;
    toolbar.resize(toolbarSize(step.size));
    frameScene();
    if (resizeWindow) {
        resizeWindow(step.size);
    }
    record(step);
}

void Session::run(const steps::MoveCamera& step) {
    cameraMoved = true;
    Camera& camera = scenery.camera;
    camera.yaw = step.yaw;
    camera.pitch = step.pitch;
    camera.distance = step.distance;
    camera = camera.limited();
    showScenery();
    record(steps::MoveCamera{.yaw = camera.yaw, .pitch = camera.pitch, .distance = camera.distance});
}

void Session::run(const steps::ResetCamera& step) {
    cameraMoved = false;
    frameScene();
    record(step);
}

Point Session::resolve(const Place& place) {
    if (const auto* inWindow = std::get_if<WindowPoint>(&place)) {
        return inWindow->point;
    }
    const auto& page = current();
    const auto* inPage = std::get_if<PagePoint>(&place);
    const auto* element = std::get_if<Element>(&place);
    const std::string what = element ? "'" + element->selector + "'" : "this point of the page";
    const Point pixel = inPage ? inPage->point : element->middle.value();
    if (pixel.x < 0 || pixel.y < 0 || pixel.x >= page.size.width || pixel.y >= page.size.height) {
        throw StepError(what + " is outside the visible part of the page: scroll first");
    }
    const auto point = scenery.windowPointOf(currentPage(), pixel);
    if (!point) {
        throw StepError(what + " cannot be seen in the window: move the camera");
    }
    return *point;
}

}  // namespace zarvik::player
