#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "Measurement.h"

namespace zarvik::bench {

inline constexpr int pageWidth = 1280;
inline constexpr int pageHeight = 720;

/// BGRA, premultiplied.
using Pixel = std::array<std::uint8_t, 4>;

struct Point {
    int x = 0;
    int y = 0;
};

/// One side with one page, as the measurements use it: each of them is written once and runs on both sides.
/// It needs a process of its own, as it takes GTK and the default main context for itself; only the thread
/// that made it uses it. What waits does so for ever if need be: the process ends itself when it hangs.
class Subject {
  public:
    using Clock = std::chrono::steady_clock;

    Subject() = default;
    virtual ~Subject() = default;
    Subject(const Subject&) = delete;
    Subject& operator=(const Subject&) = delete;

    /// Loads the page and lets it run for a while: starting processes and loading are not measured.
    virtual void show(const std::string& html) = 0;
    virtual void run(std::chrono::duration<double> time) = 0;
    /// Starts to load another page.
    virtual void load(const std::string& url) = 0;

    /// Counts the frames that arrived.
    virtual Reading read() = 0;
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
};

/// The library in the host engine: a frame is one upload into the engine's texture, calls go through the
/// exports, results and messages come through the message callback.
std::unique_ptr<Subject> makeLibrarySubject(double turnsPerSecond);

/// The browser engine alone, as cheap as it is known to be: pictures of an offscreen window without
/// accelerated compositing, read into memory of our own where the page has changed. A frame is one reading.
std::unique_ptr<Subject> makeBareSubject();

}  // namespace zarvik::bench
