#pragma once

#include <algorithm>
#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "InputRouter.h"
#include "PageReports.h"
#include "Painter.h"
#include "SessionRecorder.h"
#include "Statistics.h"
#include "Step.h"
#include "Toolbar.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/View.h"

namespace zarvik::player {

/// Something that was asked for cannot be done. The message says why.
struct StepError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// The pages, the scene that they stand in, and everything that can be done to them: the mouse, the keyboard,
/// the toolbar and scripts all end in perform(). Main thread.
class Session {
  public:
    struct Settings {
        host::Size pageSize;
        host::Size window;
        Painter::Frames frames = Painter::Frames::none;
        /// Is called when the window is to have another size. Null: there is none.
        std::function<void(host::Size)> resizeWindow{};
    };

    /// All but the settings must outlive the session. Without a recorder nothing is recorded.
    Session(host::Engine& engine, PageReports& reports, Statistics& statistics, SessionRecorder* recorder,
            const Settings& settings);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Throws StepError.
    void perform(const Action& action);
    /// Does what the toolbar asks for, and shows it what is new. To be called often.
    void update();

    host::Image picture() { return painter.picture(); }
    /// Draws the next frame although nothing has changed.
    void redraw() { painter.redraw(); }

    host::Size window() const { return scenery.window; }
    const Camera& camera() const { return scenery.camera; }
    bool isOverPage(Point windowPoint) const { return scenery.under(windowPoint).has_value(); }
    void editAddress();
    void leaveAddress();

    // For scripts. Pages are counted from 0; the current one is the one used last.
    std::size_t pageCount() const { return pages.size(); }
    std::size_t currentPage() const { return router.currentPage(); }
    /// Throws StepError if there is none.
    const host::View& viewOf(std::size_t page) const;
    PageState stateOf(std::size_t page) const;
    /// The oldest end of a load that began with the newest one or later, and that was not asked for yet.
    std::optional<LoadEnd> takeEndOfLoad(std::size_t page);
    const host::View& toolbarView() const { return toolbar.view(); }
    bool toolbarIsReady() const { return toolbar.isReady(); }
    /// When something was done last, or a page was loaded.
    std::chrono::steady_clock::time_point lastChange() const { return std::max(lastAction, lastEndOfLoad); }

  private:
    struct Page {
        std::unique_ptr<host::View> view;
        host::Size size;
        std::deque<LoadEnd> ends{};  // nobody has waited for yet
    };

    // One for each action.
    void run(const steps::Open& step);
    void run(const steps::Load& step);
    void run(const steps::Back& step);
    void run(const steps::Forward& step);
    void run(const steps::Reload& step);
    void run(const steps::Stop& step);
    void run(const steps::SelectView& step);
    void run(const steps::ResizePage& step);
    void run(const steps::Move& step);
    void run(const steps::Press& step);
    void run(const steps::Release& step);
    void run(const steps::Click& step);
    void run(const steps::Drag& step);
    void run(const steps::Scroll& step);
    void run(const steps::Type& step);
    void run(const steps::Key& step);
    void run(const steps::ResizeWindow& step);
    void run(const steps::MoveCamera& step);
    void run(const steps::ResetCamera& step);

    /// Records what a page received; what happens in the toolbar is recorded by what it asks for.
    void record(const Action& action, InputRouter::Receiver receiver = InputRouter::Receiver::page);

    Page& current();
    /// Something begins a load: what ended before is of no interest any more.
    Page& currentForNewLoad();
    void beginLoad(Page& page, const std::string& text);
    void noteEndsOfLoads();
    void rebuildStage();
    void frameScene();
    void showScenery();

    /// The point of the window for what a step points at.
    Point resolve(const Place& place);

    host::Engine& engine;
    PageReports& reports;
    SessionRecorder* const recorder;
    const host::Size pageSize;
    const std::function<void(host::Size)> resizeWindow;
    Toolbar toolbar;
    std::vector<Page> pages;
    Painter painter;  // before the views go, it must
    InputRouter router;
    Scenery scenery;
    bool cameraMoved = false;
    std::chrono::steady_clock::time_point lastAction = std::chrono::steady_clock::now();
    std::chrono::steady_clock::time_point lastEndOfLoad;
};

}  // namespace zarvik::player
