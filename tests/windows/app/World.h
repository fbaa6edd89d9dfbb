#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "Object.h"

namespace app {

/// The app's UI thread: a single-threaded apartment whose work comes through its dispatcher.
class UIThread {
  public:
    void post(std::function<void()> work, std::chrono::milliseconds delay = {});
    /// Runs the work there and waits for it.
    void run(const std::function<void()>& work);
    bool isCurrent() const { return std::this_thread::get_id() == thread.get_id(); }
    std::thread::id identifier() const { return thread.get_id(); }

  private:
    using Clock = std::chrono::steady_clock;

    [[noreturn]] void loop();

    std::mutex mutex;
    std::condition_variable changed;
    std::multimap<Clock::time_point, std::function<void()>> work;
    std::thread thread{[this] { loop(); }};
};

UIThread& uiThread();

/// How the platform answers a method from now on.
struct Behaviour {
    enum class End { soon, onPoolThread, never };

    HRESULT refusal = S_OK;  // of the call itself
    HRESULT failure = S_OK;  // of the asynchronous operation
    End end = End::soon;
};

/// What is known of a method that was called.
struct Use {
    std::wstring className;
    bool startsOperation = false;
};

std::string nameOf(const Method& method, const std::wstring& className);

/// A script that a page knows.
struct ScriptAnswer {
    std::wstring result;
    HRESULT failure = S_OK;
    std::wstring posted{};                       // what the script posts to the native side
    std::function<std::wstring()> current = {};  // the result, if it changes
};

/// What the test tells the app's side to do, and what it noticed.
struct World {
    std::map<Method, Behaviour> behaviours;
    std::wstring refusedClass;  // whose activation fails
    /// Whether a call or an activation has met with either of these.
    bool faulty = false;
    /// What ends operations that would never end.
    std::vector<std::function<void()>> pending;
    /// Everything as usual again; what would never have ended fails now.
    void behaveAsUsual();

    std::map<Method, Use> methods;
    std::vector<std::wstring> classes;

    /// What pages were given to run, and other events.
    std::vector<std::wstring> notes;
    void note(const std::wstring& event) { notes.push_back(event); }
    /// Whether something that begins so was noted.
    bool hasNoted(const std::wstring& event) const;

    std::map<std::wstring, ScriptAnswer> scripts;
    /// Pages that cannot be loaded, by URL.
    std::map<std::wstring, winrt::Windows::Web::WebErrorStatus> unreachable;
    /// The files of the device, by path, and those of the network, by URL.
    std::map<std::wstring, std::string> files;

    std::uint8_t colour = 1;  // tells one picture of a page from the next
    double rawPixelsPerViewPixel = 1;
    /// How many pictures were taken, either way.
    int renderings = 0;
    int previews = 0;
    /// Called on the UI thread when a picture is about to be rendered.
    std::function<void()> beforeRendering;
    /// How many controls there are.
    int controls = 0;
    bool panelIsNested = false;
    bool hasPanel = true;
};

/// The world, for one thread alone as long as the expression lasts.
class LockedWorld {
  public:
    World* operator->() const { return &world; }

  private:
    static inline std::recursive_mutex mutex;
    static inline World& world = *new World;

    const std::unique_lock<std::recursive_mutex> lock{mutex};
};

inline LockedWorld world() {
    return {};
}

/// Waits until the operation that is being started is to end, and fails if it is to fail.
class EndOfOperation {
  public:
    EndOfOperation();

    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) const;
    void await_resume() const;

  private:
    Behaviour behaviour;
    std::shared_ptr<std::atomic<bool>> givenUp = std::make_shared<std::atomic<bool>>(false);
};

/// The operation that ends with what `work` returns.
template <typename Result>
foundation::IAsyncOperation<Result> operation(std::function<Result()> work) {
    co_await EndOfOperation();
    co_return work();
}

inline foundation::IAsyncAction action(std::function<void()> work) {
    co_await EndOfOperation();
    work();
}

/// What the app shows of itself, in view pixels.
constexpr foundation::Rect windowBounds{0, 0, 1000, 800};

/// The panel in the app's window.
xaml::DependencyObject appPanel();
/// Gives the window its content again, with nothing in the panel.
void restoreWindow();

// The classes, by subject.
Factories userInterface();
Factories webView();
Factories content();
Factories pictures();
Factories web();

using Bytes = std::vector<std::uint8_t>;

streams::IBuffer bufferOf(Bytes bytes);
streams::IRandomAccessStream streamOf(Bytes bytes);
/// All that a stream holds.
Bytes& contentOf(const streams::IInputStream& stream);

/// The pixel at a place of a page's picture.
std::uint32_t pixelAt(std::uint32_t x, std::uint32_t y, std::uint8_t colour);

struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint8_t colour = 0;

    Bytes pixels() const;
    /// The file of the picture, in a format of its own.
    Bytes file() const;
};

/// The picture of a page of this size on the display.
Picture pictureOf(double width, double height);

foundation::Uri uriOf(const std::wstring& text);
std::wstring textOf(const foundation::Uri& uri);

/// Makes a page ask for something.
void requestPermission(controls::WebViewPermissionType type);
void requestNewWindow(const std::wstring& url);

}  // namespace app
