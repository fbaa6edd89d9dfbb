#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>

#include "Measurement.h"

namespace zarvik::bench {

struct Size {
    int width = 1280;
    int height = 720;
};

/// BGRA, premultiplied.
using Pixel = std::array<std::uint8_t, 4>;

/// Whether two pixels are the same but for what a lossy picture format makes of a plain surface.
bool alike(const Pixel& one, const Pixel& other);

struct Point {
    int x = 0;
    int y = 0;
};

/// How a side is brought up.
struct Setup {
    Size size{};                 // of each view
    double turnsPerSecond = 60;  // of the engine's render thread, where there is one
};

/// Thrown by a side for what it cannot do. The table then has no figure.
class NotServed : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

/// One side with its views, as the measurements use it: each of them is written once and runs on every side.
/// All views show the same page; what asks for a point, a script or an input means the first one. It needs a
/// process of its own, as it takes the default main context for itself; only the thread that made it uses it.
/// What waits does so for ever if need be: the process ends itself when it hangs.
class Subject {
  public:
    using Clock = std::chrono::steady_clock;

    /// `begun`: when the program that a user would start was started.
    explicit Subject(Clock::time_point begun) : begun(begun) {}
    virtual ~Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    Clock::time_point startOfProgram() const { return begun; }

    /// Makes views until there are as many. Before anything else.
    virtual void open(int views) = 0;

    /// Starts to load the page into every view.
    virtual void load(const std::string& html) = 0;
    /// The same, and lets it run for a while: starting processes and loading are not measured.
    virtual void show(const std::string& html) = 0;
    virtual void run(std::chrono::duration<double> time) = 0;
    /// Starts to load another page into the first view.
    virtual void loadUrl(const std::string& url) = 0;

    /// Counts the frames that arrived, of all views.
    virtual Reading read() = 0;
    /// Whether the display's server works for this side, so that its memory is the side's too.
    virtual bool drawsOnDisplay() const = 0;
    virtual Pixel pixel(Point point) = 0;

    /// Has the page evaluate the script; the number-th result must be that number.
    virtual void evaluate(std::uint64_t number, const std::string& script) = 0;
    virtual void waitForResults(std::uint64_t count) = 0;

    /// Runs the script, in which `post(text)` sends a message; the n-th message must be the number n.
    virtual void runPosting(const std::string& script) = 0;
    virtual void waitForMessages(std::uint64_t count) = 0;

    /// From now on, looks at the pixel in each frame that arrives.
    virtual void watch(Point point) = 0;
    virtual void pressPointer(Point point) = 0;
    virtual void releasePointer(Point point) = 0;
    /// Waits until the watched pixel has the colour and returns when the frame with it had arrived.
    virtual Clock::time_point waitForColour(const Pixel& colour) = 0;

    /// Kills the process of the page, which then has to be loaded again.
    virtual void killPage() { throw NotServed("Nobody loads the page again."); }

  protected:
    /// Of a side with the library's browser engine.
    static void killPageProcesses();

    /// How long show() lets a page run.
    static constexpr std::chrono::milliseconds warmUp{1000};

  private:
    const Clock::time_point begun;
};

/// The library in the host engine: a frame is one upload into the engine's texture, calls go through the
/// exports, results and messages come through the message callback.
std::unique_ptr<Subject> makeLibrarySubject(const Setup& setup);

/// The browser engine alone, as cheap as it is known to be: pictures of an offscreen window without
/// accelerated compositing, read into memory of our own where the page has changed. A frame is one reading.
std::unique_ptr<Subject> makeBareSubject(const Setup& setup);

/// Chromium without a window, driven over its debugging protocol: a frame is one picture of its screencast,
/// decoded into memory of our own.
std::unique_ptr<Subject> makeChromiumSubject(const Setup& setup);

/// Qt WebEngine in a scene that Qt draws into a picture in memory: a frame is one such drawing.
std::unique_ptr<Subject> makeQtSubject(const Setup& setup);

}  // namespace zarvik::bench
