#include "Statistics.h"

#include <cmath>
#include <cstdio>
#include <utility>

namespace zarvik::player {

namespace {

// A page that shows nothing new for so long does not react to the input.
constexpr std::chrono::seconds answerLimit{1};

double seconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

/// Of a millisecond, rounded.
std::size_t tenths(std::chrono::steady_clock::duration duration) {
    return static_cast<std::size_t>(std::lround(seconds(duration) * 10'000));
}

double rate(std::uint64_t count, double interval) {
    return static_cast<double>(count) / interval;
}

template <typename... Arguments>
std::string formatted(const char* format, Arguments... arguments) {
    const int length = std::snprintf(nullptr, 0, format, arguments...);
    std::string text(static_cast<std::size_t>(length), '\0');
    std::snprintf(text.data(), text.size() + 1, format, arguments...);
    return text;
}

}  // namespace

Statistics::Statistics() : latencies(tenths(answerLimit) + 1), processes(host::processTreeTimes()) {}

void Statistics::inputSent(const std::string& view, std::uint64_t pictures) {
    const std::scoped_lock lock(mutex);
    const auto now = Clock::now();
    giveUp(now);
    waiting.push_back({.view = view, .pictures = pictures, .time = now});
}

void Statistics::giveUp(Clock::time_point now) {
    while (!waiting.empty() && now - waiting.front().time > answerLimit) {
        waiting.pop_front();
        ++unanswered;
    }
}

void Statistics::frameDrawn(const std::map<std::string, std::uint64_t>& pictures) {
    const std::scoped_lock lock(mutex);
    const auto now = Clock::now();  // under the lock: no input is newer
    ++totals.frames;
    totals.pictures = pictures;
    giveUp(now);
    std::erase_if(waiting, [&](const Input& input) {
        const auto view = pictures.find(input.view);
        if (view == pictures.end() || view->second <= input.pictures) {
            return false;
        }
        ++latencies[tenths(now - input.time)];
        ++answered;
        return true;
    });
}

void Statistics::sample() {
    auto current = host::processTreeTimes();
    const std::scoped_lock lock(mutex);
    for (const auto& [process, time] : current) {
        auto& known = processes[process];
        totals.processorTime += time - known;
        known = time;
    }
    totals.time = Clock::now();
}

std::string Statistics::lastInterval() {
    const std::scoped_lock lock(mutex);
    const double interval = seconds(totals.time - previous.time);
    auto line = formatted("%.0f frames/s, processor %.0f %%", rate(totals.frames - previous.frames, interval),
                          100 * seconds(totals.processorTime - previous.processorTime) / interval);
    for (const auto& [view, pictures] : totals.pictures) {
        line += formatted(", %s %.0f pictures/s", view.c_str(),
                          rate(pictures - previous.pictures[view], interval));
    }
    previous = totals;
    return line;
}

std::string Statistics::summary() const {
    const std::scoped_lock lock(mutex);
    const double interval = seconds(totals.time - start);
    const double processor = seconds(totals.processorTime);
    auto text = formatted(
        "%.1f s\n"
        "frames drawn        %llu (%.1f/s)\n"
        "processor time      %.2f s in all processes (%.0f %% of one core)\n",
        interval, static_cast<unsigned long long>(totals.frames), rate(totals.frames, interval), processor,
        100 * processor / interval);
    for (const auto& [view, pictures] : totals.pictures) {
        text += formatted("pictures uploaded   %s: %llu (%.1f/s)\n", view.c_str(),
                          static_cast<unsigned long long>(pictures), rate(pictures, interval));
    }
    const std::uint64_t sent = answered + waiting.size() + unanswered;
    text += formatted("input to picture    %llu of %llu inputs were followed by a new picture of their page",
                      static_cast<unsigned long long>(answered), static_cast<unsigned long long>(sent));
    if (answered > 0) {
        text +=
            formatted("\n                    median %.1f ms, 90 %% %.1f ms, 99 %% %.1f ms, longest %.1f ms",
                      latency(0.5), latency(0.9), latency(0.99), latency(1));
    }
    return text;
}

double Statistics::latency(double part) const {
    const auto rank = static_cast<std::uint64_t>(std::ceil(part * static_cast<double>(answered)));
    std::uint64_t below = 0;
    std::size_t tenth = 0;
    while ((below += latencies[tenth]) < rank) {
        ++tenth;
    }
    return static_cast<double>(tenth) / 10;
}

}  // namespace zarvik::player
