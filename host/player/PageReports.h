#pragma once

#include <chrono>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "zarvik/host/Recorder.h"

namespace zarvik::player {

/// How a load ended. One that was cancelled does not count: another one took its place.
struct LoadEnd {
    bool success = false;
    std::string reason;  // of a failure
    std::chrono::steady_clock::time_point time;
};

/// What a view's page is like, by what the plug-in reported.
struct PageState {
    std::string url;
    std::string title;
    bool loading = false;
    double progress = 0;  // of the load, from 0 to 1
    std::string failure;  // of the last load; empty if it succeeded
    bool canGoBack = false;
    bool canGoForward = false;
};

/// Keeps the state of every view, and what the toolbar's page asks for. Any thread.
class PageReports {
  public:
    explicit PageReports(std::string toolbarTarget) : toolbarTarget(std::move(toolbarTarget)) {}

    /// Takes note of a call of the plug-in.
    void take(const host::Record& record);

    PageState of(const std::string& target) const;
    /// The loads of a view that have ended since the last call.
    std::vector<LoadEnd> takeEndsOfLoads(const std::string& target);

    /// What the toolbar's page has posted since the last call.
    std::vector<std::string> takeToolbarMessages();

  private:
    const std::string toolbarTarget;
    struct Page {
        PageState state;
        std::vector<LoadEnd> ends;
    };

    static void endLoad(Page& page, const host::Record& record);

    mutable std::mutex mutex;  // guards the two below
    std::map<std::string, Page> pages;
    std::vector<std::string> toolbarMessages;
};

}  // namespace zarvik::player
