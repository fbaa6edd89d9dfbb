#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "Object.h"

namespace app {

/// The app's UI thread: a single-threaded apartment whose work comes through its dispatcher.
class UIThread {
  public:
    UIThread();
    ~UIThread();

    void post(std::function<void()> work, std::chrono::milliseconds delay = {});
    /// Runs the work there and waits for it.
    void run(const std::function<void()>& work);
    bool isCurrent() const { return std::this_thread::get_id() == id; }
    std::thread::id identifier() const { return id; }

  private:
    using Clock = std::chrono::steady_clock;

    void loop();

    std::mutex mutex;
    std::condition_variable changed;
    std::multimap<Clock::time_point, std::function<void()>> work;
    bool ending = false;
    std::thread::id id;
    std::thread thread;
};

UIThread& uiThread();

/// How the platform answers a method from now on.
struct Behaviour {
    enum class End { soon, onPoolThread, never };

    HRESULT refusal = S_OK;  // of the call itself
    HRESULT failure = S_OK;  // of the asynchronous operation
    End end = End::soon;
    Method method{};
};

/// That of the method that is being called on this thread.
inline thread_local Behaviour currentBehaviour;

/// A script that a page knows.
struct ScriptAnswer {
    std::wstring result;
    HRESULT failure = S_OK;
    std::wstring posted{};  // what the script posts to the native side
};

/// What the test tells the app's side to do, and what it noticed. Any thread.
class World {
  public:
    void behave(const Method& method, const Behaviour& behaviour);
    /// Everything as usual again; what would never have ended fails now.
    void behaveAsUsual();
    Behaviour behaviourOf(const Method& method);
    /// Calls `fail` when operations that never end are given up.
    void whenGivenUp(std::function<void()> fail);

    /// Lets the activation of a class fail.
    void refuse(const std::wstring& className);
    bool isRefused(const std::wstring& className);

    /// The methods that were called and the classes that were activated up to now, in that order.
    std::vector<std::pair<Method, std::wstring>> calledMethods();
    std::vector<std::wstring> activatedClasses();
    /// Those of the methods that start an operation.
    std::vector<std::pair<Method, std::wstring>> operations();
    void noteCall(const Method& method, const wchar_t* object);
    void noteOperation(const Method& method);
    /// Whether anything has met with a fault since all was as usual.
    bool wasFaulty();
    /// Whether an operation is under way that never ends.
    bool hasPending();

    void setScript(const std::wstring& script, ScriptAnswer answer);
    std::optional<ScriptAnswer> script(const std::wstring& script);
    void note(const std::wstring& event);
    /// Whether something that begins so was noted since the notes were cleared: what pages were given to run,
    /// and other events.
    bool hasNoted(const std::wstring& event);
    void clearNotes();

    /// Pages that cannot be loaded, by URL.
    std::map<std::wstring, winrt::Windows::Web::WebErrorStatus> unreachable;
    /// The text files of the device, by path.
    std::map<std::wstring, std::string> files;
    std::atomic<std::uint8_t> colour{1};  // tells one picture of a page from the next
    std::atomic<double> rawPixelsPerViewPixel{1};
    /// How many pictures were taken, either way.
    std::atomic<int> renderings{0};
    std::atomic<int> previews{0};
    foundation::Rect visibleBounds{0, 0, 1000, 800};
    bool panelIsNested = false;
    bool hasPanel = true;

  private:
    std::mutex mutex;
    std::vector<std::pair<Method, Behaviour>> behaviours;
    std::vector<std::function<void()>> pending;
    std::set<std::wstring> refusals;
    bool faulty = false;
    std::vector<std::wstring> classes;
    std::vector<std::pair<Method, std::wstring>> methods;
    std::vector<Method> started;
    std::map<std::wstring, ScriptAnswer> scripts;
    std::vector<std::wstring> notes;
};

World& world();

/// Waits until the operation that is being started is to end, and fails if it is to fail.
struct EndOfOperation {
    EndOfOperation() { world().noteOperation(behaviour.method); }

    Behaviour behaviour = currentBehaviour;
    std::shared_ptr<std::atomic<bool>> givenUp = std::make_shared<std::atomic<bool>>(false);

    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) const;
    void await_resume() const;
};

/// The operation that ends with what `work` returns.
template <typename Result>
foundation::IAsyncOperation<Result> operation(std::function<Result()> work) {
    co_await EndOfOperation();
    co_return work();
}

inline foundation::IAsyncAction action(std::function<void()> work = {}) {
    co_await EndOfOperation();
    if (work) {
        work();
    }
}

/// The panel in the app's window.
Object& appPanel();
/// Gives the window its content again, with nothing in the panel.
void restoreWindow();

// The classes, by subject.
Factories userInterface();
Factories webView();
Factories content();
Factories web();

/// The pixel at a place of a page's picture.
std::uint32_t pixelAt(std::uint32_t x, std::uint32_t y, std::uint8_t colour);

/// Bytes in memory.
streams::IBuffer bufferOf(std::vector<std::uint8_t> bytes);

struct Picture {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint8_t colour = 0;

    std::vector<std::uint8_t> pixels() const;
};

/// The picture of a page of this size on the display.
Picture pictureOf(double width, double height);
/// Puts a picture into a stream in the app's own format.
void writePicture(const streams::IRandomAccessStream& stream, const Picture& picture);

foundation::Uri uriOf(const std::wstring& text);
std::wstring textOf(const foundation::Uri& uri);
/// All that a stream holds.
std::string contentOf(const streams::IInputStream& stream);

/// Makes a page ask for something.
void requestPermission(controls::WebViewPermissionType type);
void requestNewWindow(const std::wstring& url);

}  // namespace app
