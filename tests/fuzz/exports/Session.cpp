#include "fuzz/exports/Session.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "fuzz/support/Require.h"
#include "support/Pdf.h"
#include "support/Processes.h"

using namespace std::chrono_literals;

namespace {

constexpr double turnsPerSecond = 100;

/// How long something may take that has to come. What takes longer never comes, on a busy machine, too.
constexpr auto patience = 40s;

/// How long a sequence waits for a load to end, which it may never do.
constexpr auto shortPatience = 400ms;

/// Whether a page process has come so far that it exchanges messages. The browser engine ends the whole
/// program when one dies before.
bool isConnected(pid_t process) {
    std::error_code gone;
    const auto tasks = "/proc/" + std::to_string(process) + "/task";
    for (auto task = std::filesystem::directory_iterator(tasks, gone);
         !gone && task != std::filesystem::directory_iterator(); task.increment(gone)) {
        std::string name;
        std::getline(std::ifstream(task->path() / "comm"), name);
        if (name == "ReceiveQueue") {
            return true;
        }
    }
    return false;
}

}  // namespace

Session* Session::current = nullptr;
thread_local Session::Lane Session::ownLane = Session::scriptingLane;
thread_local int Session::ownView = -1;
int Session::something = 0;

Session::Session()
    : library(zarvik::host::Plugin::defaultPath()), renderFunction(plugin().WebView_getRenderFunction()) {
    require(!std::exchange(current, this), "there is one session");
    server.page("/plain", "<title>plain</title><p>plain");
    server.page("/moving",
                "<style>@keyframes a { to { opacity: 0 } } p { animation: a 1s infinite }</style><p>moving");
    server.page("/frames",
                "<iframe src=/plain></iframe><iframe src='" + server.otherOriginUrl("/plain") + "'>");
    const std::string document = makePdf(2);
    server.content("/document.pdf", "application/pdf", document);
    const auto serveLate = [this](const std::string& path, const std::string& type,
                                  const std::string& content) {
        server.on(path, [type, content](const httplib::Request&, httplib::Response& response) {
            std::this_thread::sleep_for(200ms);
            response.set_content(content, type);
        });
    };
    serveLate("/slow.pdf", "application/pdf", document);
    serveLate("/slow", "text/html", "<!doctype html><p>slow");
    server.redirect("/redirected", "/plain");
    server.redirect("/in-circles", "/in-circles");
    folder.write("page.html", "<!doctype html><title>local</title><p>local");
    folder.write("document.pdf", document);

    renderThread =
        std::make_unique<zarvik::host::RenderThread>(context, turnsPerSecond, [this] { renderTurn(); });
    zarvik::host::InterfaceRegistry::setDevice(device.device());
    plugin().UnityPluginLoad(zarvik::host::InterfaceRegistry::interfaces());
    registerCallbacks();
}

void Session::stop() {
    renderThread.reset();
}

void Session::play(const std::vector<Step>& steps) {
    {
        const std::scoped_lock lock(mutex);
        ++sequence;
        views.assign(mostViews, {});
        isOver = false;
    }
    std::vector<Step> aside;
    std::vector<std::thread> threads;
    const auto startAside = [&] {
        if (!aside.empty()) {
            threads.emplace_back([this, lane = threads.size() + 1, steps = std::exchange(aside, {})] {
                for (const Step& step : steps) {
                    run(step, lane);
                }
            });
        }
    };
    for (const Step& step : steps) {
        if (step.where == Step::Where::onOtherThread) {
            aside.push_back(step);
            continue;
        }
        startAside();
        if (step.where == Step::Where::inCallback) {
            const std::scoped_lock lock(mutex);
            forCallbacks.push_back(step);
        } else {
            run(step, scriptingLane);
        }
    }
    startAside();
    for (std::thread& thread : threads) {
        thread.join();
    }
    end();
}

void Session::run(const Step& step, Lane lane) {
    switch (step.action) {
        case Step::Action::call:
            return call(step, lane);
        case Step::Action::turn:
            return renderThread->takeTurn();
        case Step::Action::render:
            return renderThread->run(
                [&] { renderFunction(static_cast<int>(step.arguments.front().number)); });
        case Step::Action::wait:
            return std::this_thread::sleep_for(std::chrono::milliseconds(step.arguments.front().number));
        case Step::Action::waitForLoad:
            return waitForLoad(static_cast<int>(step.arguments.front().number));
        case Step::Action::failDevice:
            return failDevice(static_cast<int>(step.arguments.front().number));
        case Step::Action::mendDevice:
            return device.setFaults({});
        case Step::Action::killPage:
            return killPage(static_cast<std::size_t>(step.arguments.front().number));
    }
}

void Session::call(const Step& step, Lane lane) {
    const auto outerLane = std::exchange(ownLane, lane);
    const int outerView = std::exchange(ownView, -1);
    step.function->call(*this, step);
    if (ownView >= 0 && step.function->name == "WebView_destroy") {
        const std::scoped_lock lock(mutex);
        views[static_cast<std::size_t>(ownView)].isGone = true;
    }
    ownLane = outerLane;
    ownView = outerView;
}

/// Once for each callback, and not inside itself: what is called there may call back at once.
void Session::callInCallback() {
    if (ownLane == callbackLane) {
        return;
    }
    Step next;
    {
        const std::scoped_lock lock(mutex);
        if (forCallbacks.empty()) {
            return;
        }
        next = std::move(forCallbacks.front());
        forCallbacks.pop_front();
    }
    call(next, callbackLane);
}

void Session::waitForLoad(int view) {
    const auto ended = [this, view] {
        const std::scoped_lock lock(mutex);
        const View& waitedFor = views[static_cast<std::size_t>(view)];
        return waitedFor.handle ? waitedFor.loadsEnded : 1;
    };
    for (const auto limit = std::chrono::steady_clock::now() + shortPatience;
         ended() == 0 && std::chrono::steady_clock::now() < limit;) {
        std::this_thread::sleep_for(5ms);
    }
    const std::scoped_lock lock(mutex);
    views[static_cast<std::size_t>(view)].loadsEnded = 0;
}

void Session::failDevice(int what) {
    constexpr auto removed = static_cast<HRESULT>(0x887A0005U);
    zarvik::host::GLDevice::Faults faults;
    if (what == 0) {
        faults.map = [] { return removed; };
    } else if (what == 1) {
        faults.createTexture2D = [](const D3D11_TEXTURE2D_DESC&) { return removed; };
    } else {
        faults.createShaderResourceView = [] { return removed; };
    }
    device.setFaults(std::move(faults));
}

void Session::killPage(std::size_t index) {
    auto processes = pageProcesses();
    std::erase_if(processes, [](pid_t process) { return !isConnected(process); });
    if (!processes.empty()) {
        kill(processes[index % processes.size()], SIGKILL);
    }
}

void Session::renderTurn() {
    std::vector<std::int32_t> current;
    {
        const std::scoped_lock lock(mutex);
        current = keys;
    }
    for (const auto key : current) {
        renderFunction(key);
    }
    device.synchronize();
}

void Session::end() {
    registerCallbacks();
    device.setFaults({});
    {
        const std::scoped_lock lock(mutex);
        forCallbacks.clear();
    }
    plugin().WebView_handleMixedRealityAppFocusChanged(true);
    checkAnswers();
    destroyViews();

    plugin().WebView_setStorageEnabled(true);
    plugin().WebView_setCameraAndMicrophoneEnabled(false);
    plugin().WebView_setGeolocationEnabled(false);
    plugin().WebView_globallySetUserAgentToMobile(false);
    plugin().WebView_deleteCookies(server.url("/").c_str(), nullptr);
}

/// Views that are still there owe all their answers.
void Session::checkAnswers() {
    std::string missing;
    const bool allCame = comesTrue([&] {
        const std::scoped_lock lock(mutex);
        missing.clear();
        if (wasDeaf) {
            return true;
        }
        for (const auto& [id, question] : questions) {
            const bool isOwed = question.mustBeAnswered && question.view >= 0 &&
                                !views[static_cast<std::size_t>(question.view)].destroyed;
            if (isOwed && question.answers == 0) {
                missing += " script " + id;
            }
        }
        for (const View& view : views) {
            if (view.handle && !view.destroyed && !view.target.empty() && !hasNoControl &&
                view.navigationAnswers < view.navigationQuestions) {
                missing += " history of " + view.target;
            }
        }
        return missing.empty();
    });
    require(allCame, "what a view is asked is answered", missing);
}

void Session::destroyViews() {
    std::vector<View> left;
    {
        const std::scoped_lock lock(mutex);
        left = views;
        keys.clear();
    }
    for (const View& view : left) {
        if (view.handle) {
            // Each of its keys is one.
            for (int i = 0; i < static_cast<int>(left.size()); ++i) {
                plugin().WebView_removePointer(view.handle);
            }
            plugin().WebView_destroy(view.handle);
        }
    }
    plugin().WebView_removePointer(&something);
    {
        const std::scoped_lock lock(mutex);
        for (View& view : views) {
            view.isGone = true;
        }
    }
    // What was under way on the other threads is over when they have done something else.
    renderThread->takeTurn();
    std::free(plugin().WebView_getCookies(server.url("/").c_str(), nullptr));
    renderThread->takeTurn();
    isOver = true;
    for (void* texture = takeTexture(0); texture; texture = takeTexture(0)) {
        plugin().WebView_destroyTexture(texture);
    }
    const bool allGone = comesTrue([this] {
        renderThread->takeTurn();
        return device.liveObjects() == zarvik::host::GLDevice::LiveObjects{};
    });
    const auto live = device.liveObjects();
    require(allGone, "nothing of the textures stays",
            std::to_string(live.textures) + " textures and " + std::to_string(live.shaderResourceViews) +
                " views");
    const std::scoped_lock lock(mutex);
    questions.clear();
    lastAnswers.clear();
    wasDeaf = hasOddText = hasNoControl = false;
}

bool Session::comesTrue(const std::function<bool()>& condition) {
    for (const auto limit = std::chrono::steady_clock::now() + patience;
         std::chrono::steady_clock::now() < limit; std::this_thread::sleep_for(5ms)) {
        if (condition()) {
            return true;
        }
    }
    return false;
}

void Session::registerCallbacks() {
    plugin().UnityPluginLoad(zarvik::host::InterfaceRegistry::interfaces());
    plugin().WebView_setSendMessageFunction(receive);
    plugin().WebView_setDataResultCallback(receive);
    plugin().WebView_setLogFunctions(receive, receive, receive);
}

// What the engine hears

void Session::receive(const char* target, const char* method, const char* payload) {
    current->onMessage(target, method, payload);
}

void Session::receive(const char* target, const char* id, const std::uint8_t* bytes, std::int32_t length) {
    current->onData(target, id, {bytes, static_cast<std::size_t>(length)});
}

void Session::receive(const char* line) {
    current->onLine(line);
}

void Session::onMessage(const char* target, const char* method, const char* payload) {
    {
        const std::scoped_lock lock(mutex);
        require(!(isOver && viewOf(target)), "a view that was destroyed is silent",
                std::string(target) + " " + method + " " + payload);
        require(hasOddText || isUtf8(payload), "a message is UTF-8", readable(payload));
    }
    const std::string_view name = method;
    if (name == "HandleTextureChanged") {
        onTexture(payload);
    } else {
        require(!renderThread->isCurrent(), "the render thread hears only of textures", std::string(name));
        const std::scoped_lock lock(mutex);
        View* const view = viewOf(target);
        if (name == "HandleJavaScriptResult") {
            onScriptResult(target, payload);
        } else if (view && name.starts_with("HandleCanGo")) {
            require(std::string_view(payload) == "true" || std::string_view(payload) == "false",
                    "the history has a direction or not", payload);
            ++view->navigationAnswers;
            require(view->navigationAnswers <= view->navigationQuestions, "only what was asked is answered",
                    target);
        } else if (view && (name == "HandleLoadFinished" || name == "HandleLoadFailed")) {
            ++view->loadsEnded;
        }
    }
    callInCallback();
}

void Session::onScriptResult(std::string_view target, std::string_view payload) {
    if (View* const view = viewOf(target); view && view->isGone) {
        // One may have been on its way when the call came.
        require(++view->lateAnswers <= 1, "a view that was destroyed answers no scripts",
                std::string(target));
    }
    const auto id = payload.substr(0, payload.find(','));
    const auto found = questions.find(id);
    require(found != questions.end(), "only what was asked is answered", std::string(payload.substr(0, 100)));
    Question& question = found->second;
    require(++question.answers == 1, "a script is answered once", std::string(payload.substr(0, 100)));
    if (question.lane != callbackLane) {
        const auto number = std::stoll(std::string(id.substr(id.find('.') + 1)));
        auto& last = lastAnswers.try_emplace({std::string(target), question.lane}, -1).first->second;
        require(number > last, "scripts are answered in their order",
                std::to_string(number) + " after " + std::to_string(last));
        last = number;
    }
}

void Session::onTexture(const char* payload) {
    require(renderThread->isCurrent(), "a texture is announced on the render thread");
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the library sends the address as text
    auto* const texture = reinterpret_cast<void*>(std::stoull(payload));
    const std::scoped_lock lock(mutex);
    require(texture && std::ranges::find(textures, texture) == textures.end(), "a texture is announced once",
            payload);
    textures.push_back(texture);
}

void Session::onData(const char* target, const char* id, std::span<const std::uint8_t> bytes) {
    {
        const std::scoped_lock lock(mutex);
        require(!(isOver && viewOf(target)), "a view that was destroyed is silent",
                std::string(target) + " " + id);
        require(!bytes.empty(), "a picture is not empty", id);
        if (*id != '\0') {
            const auto found = questions.find(id);
            require(found != questions.end(), "only what was asked is answered", id);
            require(++found->second.answers == 1, "a picture is given once", id);
        }
    }
    callInCallback();
}

void Session::onLine(const char* line) {
    const std::string_view text = line;
    const auto blank = text.find(' ');
    require(blank != std::string_view::npos && blank > 0 &&
                std::ranges::all_of(text.substr(0, blank),
                                    [](char digit) { return digit >= '0' && digit <= '9'; }),
            "a line begins with its time", std::string(text.substr(0, 100)));
    {
        const std::scoped_lock lock(mutex);
        hasNoControl =
            hasNoControl || text.find("the native webview couldn't be created") != std::string_view::npos;
    }
    callInCallback();
}

Session::View* Session::viewOf(std::string_view target) {
    const auto found = std::ranges::find(views, target, &View::target);
    return target.empty() || found == views.end() ? nullptr : &*found;
}
