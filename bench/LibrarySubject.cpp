#include <condition_variable>
#include <ctime>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <vector>

#include "Arrivals.h"
#include "Subject.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/View.h"

namespace zarvik::bench {

namespace {

std::chrono::nanoseconds currentThreadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

/// What came through the message callback. The library's thread fills it.
struct Inbox {
    Arrivals results;
    Arrivals messages;

    void add(const host::Record& record) {
        if (record.method == "HandleJavaScriptResult") {
            results.add(std::string_view(record.payload).substr(record.payload.find(',') + 1));
        } else if (record.method == "HandleMessageEmitted") {
            messages.add(record.payload);
        }
    }
};

/// A pixel of the view's texture, read in each turn of the engine that uploaded a frame. Others may wait for
/// a colour.
class WatchedPixel {
  public:
    WatchedPixel(host::Engine& engine, const host::View& view, Point point)
        : engine(engine), view(view), point(point) {
        engine.setDrawing([this] {
            look();
            return false;
        });
    }
    ~WatchedPixel() { engine.setDrawing(nullptr); }
    WatchedPixel(const WatchedPixel&) = delete;
    WatchedPixel& operator=(const WatchedPixel&) = delete;

    Subject::Clock::time_point waitFor(const Pixel& colour) {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return alike(pixel, colour); });
        return since;
    }

  private:
    // Render thread, when the uploads of a turn are done.
    void look() {
        const auto now = Subject::Clock::now();
        const auto uploads = view.uploads();
        if (uploads == seenUploads) {
            return;
        }
        seenUploads = uploads;
        const auto current = view.readPixels().at(point.x, point.y);
        const std::scoped_lock lock(mutex);
        if (current != pixel) {
            pixel = current;
            since = now;
            changed.notify_all();
        }
    }

    host::Engine& engine;
    const host::View& view;
    const Point point;
    std::uint64_t seenUploads = 0;  // render thread

    std::mutex mutex;
    std::condition_variable changed;
    Pixel pixel{};
    Subject::Clock::time_point since;
};

class LibrarySubject final : public Subject {
  public:
    explicit LibrarySubject(const Setup& setup)
        : Subject(startOfThisProcess()),
          size(setup.size),
          engine({.turnsPerSecond = setup.turnsPerSecond}),
          exports(engine.plugin()) {}

    void open(int count) override {
        while (views.size() < static_cast<std::size_t>(count)) {
            views.push_back(
                std::make_unique<host::View>(engine, host::Size{.width = size.width, .height = size.height}));
        }
    }

    void load(const std::string& html) override {
        for (const auto& view : views) {
            view->loadHtml(html);
        }
    }

    void show(const std::string& html) override {
        load(html);
        for (const auto& view : views) {
            if (const auto load = view->waitForLoad(); !load) {
                throw std::runtime_error("The page did not load. " + load.reason);
            }
            if (!view->waitForUploads(1)) {
                throw std::runtime_error("No picture came into the texture.");
            }
        }
        run(warmUp);
        engine.recorder().setObserver([inbox = inbox](const host::Record& record) { inbox->add(record); });
    }

    void run(std::chrono::duration<double> time) override { std::this_thread::sleep_for(time); }

    void loadUrl(const std::string& url) override { first().loadUrl(url); }

    Reading read() override {
        std::uint64_t uploads = 0;
        for (const auto& view : views) {
            uploads += view->uploads();
        }
        return Reading::now(uploads, engine.renderThread().run(currentThreadTime));
    }

    bool drawsOnDisplay() const override { return true; }

    Pixel pixel(Point point) override { return first().readPixels().at(point.x, point.y); }

    void evaluate(std::uint64_t number, const std::string& script) override {
        exports.WebView_executeJavaScript(first().handle(), script.c_str(), std::to_string(number).c_str());
    }

    void waitForResults(std::uint64_t count) override { inbox->results.waitFor(count); }

    void runPosting(const std::string& script) override {
        const auto whole = "{ const post = (text) => zarvik.postMessage(text); " + script + " }";
        exports.WebView_executeJavaScript(first().handle(), whole.c_str(), nullptr);
    }

    void waitForMessages(std::uint64_t count) override { inbox->messages.waitFor(count); }

    void watch(Point point) override {
        watched.reset();
        watched = std::make_unique<WatchedPixel>(engine, first(), point);
    }

    void pressPointer(Point point) override {
        exports.WebView_pointerDown(first().handle(), point.x, point.y, 0, 1);
    }

    void releasePointer(Point point) override {
        exports.WebView_pointerUp(first().handle(), point.x, point.y, 0, 1);
    }

    Clock::time_point waitForColour(const Pixel& colour) override { return watched->waitFor(colour); }

    void killPage() override { killPageProcesses(); }

  private:
    host::View& first() { return *views.front(); }

    const Size size;
    // Shared with the observer, which may still be at work when the waiting ends.
    const std::shared_ptr<Inbox> inbox = std::make_shared<Inbox>();
    host::Engine engine;
    std::vector<std::unique_ptr<host::View>> views;
    const host::PluginExports& exports;
    std::unique_ptr<WatchedPixel> watched;
};

}  // namespace

std::unique_ptr<Subject> makeLibrarySubject(const Setup& setup) {
    return std::make_unique<LibrarySubject>(setup);
}

}  // namespace zarvik::bench
