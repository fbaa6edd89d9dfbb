#include "Statistics.h"

#include <algorithm>
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

/// The value below which this part of the sorted values is.
double percentile(const std::vector<double>& sorted, double part) {
    const auto rank = static_cast<std::size_t>(std::ceil(part * static_cast<double>(sorted.size())));
    return sorted[std::max<std::size_t>(rank, 1) - 1];
}

}  // namespace

Statistics::Statistics() : processes(host::processTreeTimes()) {}

void Statistics::inputSent(const std::string& view, std::uint64_t pictures) {
    const std::scoped_lock lock(mutex);
    waiting.push_back({.view = view, .pictures = pictures, .time = Clock::now()});
}

void Statistics::frameDrawn(const std::map<std::string, std::uint64_t>& pictures) {
    const auto now = Clock::now();
    const std::scoped_lock lock(mutex);
    ++totals.frames;
    totals.pictures = pictures;
    std::erase_if(waiting, [&](const Input& input) {
        const auto view = pictures.find(input.view);
        if (view == pictures.end() || view->second <= input.pictures) {
            return false;
        }
        if (now - input.time > answerLimit) {
            ++unanswered;
        } else {
            latencies.push_back(seconds(now - input.time) * 1000);
        }
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
    text += formatted("input to picture    %zu of %zu inputs were followed by a new picture of their page",
                      latencies.size(), latencies.size() + waiting.size() + unanswered);
    if (!latencies.empty()) {
        auto sorted = latencies;
        std::ranges::sort(sorted);
        text += formatted(
            "\n                    median %.1f ms, 90 %% %.1f ms, 99 %% %.1f ms, longest %.1f ms",
            percentile(sorted, 0.5), percentile(sorted, 0.9), percentile(sorted, 0.99), sorted.back());
    }
    return text;
}

}  // namespace zarvik::player
