#include <glib.h>

#include <condition_variable>
#include <future>
#include <map>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "Arrivals.h"
#include "DevTools.h"
#include "Jpeg.h"
#include "Subject.h"

namespace zarvik::bench {

namespace {

using Json = DevTools::Json;

/// What a binding of the page is called, through which it sends messages.
constexpr const char* binding = "benchPost";

constexpr std::chrono::milliseconds pollInterval{20};

std::string dataUrl(const std::string& html) {
    const std::unique_ptr<gchar, decltype(&g_free)> text(
        g_base64_encode(reinterpret_cast<const guchar*>(html.data()), html.size()), g_free);
    return std::string("data:text/html;base64,") + text.get();
}

/// A page that is looked at. The thread that reads the pipe writes what the mutex guards.
struct Page {
    std::string session;
    std::mutex mutex;
    std::condition_variable arrived;
    std::vector<std::uint8_t> pixels;
    JpegSize size;
    std::uint64_t frames = 0;
    Subject::Clock::time_point last;

    Pixel pixelLocked(Point point) const {
        if (point.x >= size.width || point.y >= size.height) {
            return {};
        }
        const auto* const first =
            &pixels.at((std::size_t{4} * size.width * point.y) + std::size_t{4} * point.x);
        return {first[0], first[1], first[2], first[3]};
    }
};

class ChromiumSubject final : public Subject {
  public:
    explicit ChromiumSubject(const Setup& setup)
        : Subject(Clock::now()),
          size(setup.size),
          browser([this](const std::string& session, const std::string& method, Json& parameters) {
              receive(session, method, parameters);
          }) {}

    void open(int count) override;

    void load(const std::string& html) override {
        for (const auto& page : pages) {
            browser.send(page->session, "Page.navigate", {{"url", dataUrl(html)}});
        }
    }
    void show(const std::string& html) override;
    void run(std::chrono::duration<double> time) override { std::this_thread::sleep_for(time); }

    void loadUrl(const std::string&) override {
        throw NotServed("Its viewer of documents is in a frame that the screencast's page does not own.");
    }

    Reading read() override;
    bool drawsOnDisplay() const override { return false; }
    Pixel pixel(Point point) override {
        const std::scoped_lock lock(first().mutex);
        return first().pixelLocked(point);
    }

    void evaluate(std::uint64_t number, const std::string& script) override;
    void waitForResults(std::uint64_t count) override { results.waitFor(count); }

    void runPosting(const std::string& script) override {
        browser.send(first().session, "Runtime.evaluate",
                     {{"expression",
                       std::string("{ const post = (text) => ") + binding + "(text); " + script + " }"}});
    }
    void waitForMessages(std::uint64_t count) override { messages.waitFor(count); }

    void watch(Point point) override { watched = point; }
    void pressPointer(Point point) override { dispatch("mousePressed", point); }
    void releasePointer(Point point) override { dispatch("mouseReleased", point); }
    Clock::time_point waitForColour(const Pixel& colour) override {
        std::unique_lock lock(first().mutex);
        first().arrived.wait(lock, [&] { return alike(first().pixelLocked(watched), colour); });
        return first().last;
    }

  private:
    Page& first() { return *pages.front(); }
    Page* pageOf(const std::string& session);
    void receive(const std::string& session, const std::string& method, Json& parameters);
    void receiveFrame(Page& page, Json& parameters);
    void dispatch(const char* type, Point point) {
        browser.send(first().session, "Input.dispatchMouseEvent",
                     {{"type", type}, {"x", point.x}, {"y", point.y}, {"button", "left"}, {"clickCount", 1}});
    }

    const Size size;
    std::mutex pagesMutex;  // guards the list, not its pages, against the thread that reads
    std::vector<std::unique_ptr<Page>> pages;
    Arrivals results;
    Arrivals messages;
    Point watched;
    DevTools browser;  // last: its thread uses all of the above
};

void ChromiumSubject::open(int count) {
    while (pages.size() < static_cast<std::size_t>(count)) {
        // A window of its own, since of several tabs only one is drawn.
        const auto target = browser.call(
            {}, "Target.createTarget",
            {{"url", "about:blank"}, {"width", size.width}, {"height", size.height}, {"newWindow", true}});
        auto page = std::make_unique<Page>();
        page->session = browser.call({}, "Target.attachToTarget",
                                     {{"targetId", target["targetId"]}, {"flatten", true}})["sessionId"];
        const auto session = page->session;
        {
            const std::scoped_lock lock(pagesMutex);
            pages.push_back(std::move(page));
        }
        browser.call(session, "Page.enable");
        browser.call(session, "Runtime.enable");
        browser.call(session, "Runtime.addBinding", {{"name", binding}});
        browser.call(
            session, "Emulation.setDeviceMetricsOverride",
            {{"width", size.width}, {"height", size.height}, {"deviceScaleFactor", 1}, {"mobile", false}});
        browser.call(
            session, "Page.startScreencast",
            {{"format", "jpeg"}, {"quality", 80}, {"maxWidth", size.width}, {"maxHeight", size.height}});
    }
}

void ChromiumSubject::show(const std::string& html) {
    load(html);
    for (const auto& page : pages) {
        const Json loaded{
            {"expression", "location.protocol === 'data:' && document.readyState === 'complete'"}};
        while (browser.call(page->session, "Runtime.evaluate", loaded)["result"]["value"] != true) {
            run(pollInterval);
        }
    }
    run(warmUp);
}

Reading ChromiumSubject::read() {
    std::uint64_t frames = 0;
    for (const auto& page : pages) {
        const std::scoped_lock lock(page->mutex);
        frames += page->frames;
    }
    return Reading::now(frames);
}

void ChromiumSubject::evaluate(std::uint64_t, const std::string& script) {
    browser.send(first().session, "Runtime.evaluate", {{"expression", script}, {"returnByValue", true}},
                 [this](Json& reply) {
                     auto& value = reply["result"]["result"]["value"];
                     results.add(value.is_string() ? value.get<std::string>() : value.dump());
                 });
}

Page* ChromiumSubject::pageOf(const std::string& session) {
    const std::scoped_lock lock(pagesMutex);
    for (const auto& page : pages) {
        if (page->session == session) {
            return page.get();
        }
    }
    return nullptr;
}

// On the thread that reads.
void ChromiumSubject::receive(const std::string& session, const std::string& method, Json& parameters) {
    auto* const page = pageOf(session);
    if (page && method == "Page.screencastFrame") {
        receiveFrame(*page, parameters);
    } else if (method == "Runtime.bindingCalled" && parameters["name"] == binding) {
        messages.add(parameters["payload"].get_ref<const std::string&>());
    }
}

void ChromiumSubject::receiveFrame(Page& page, Json& parameters) {
    // First of all, so that the browser may draw the next one meanwhile.
    browser.send(page.session, "Page.screencastFrameAck", {{"sessionId", parameters["sessionId"]}});
    auto& text = parameters["data"].get_ref<std::string&>();
    gsize length = 0;
    const std::span jpeg(g_base64_decode_inplace(text.data(), &length), length);
    const std::scoped_lock lock(page.mutex);
    page.size = decodeJpeg(jpeg, page.pixels);
    ++page.frames;
    page.last = Clock::now();
    page.arrived.notify_all();
}

}  // namespace

std::unique_ptr<Subject> makeChromiumSubject(const Setup& setup) {
    return std::make_unique<ChromiumSubject>(setup);
}

}  // namespace zarvik::bench
