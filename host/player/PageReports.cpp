#include "PageReports.h"

#include <charconv>

#include "Json.h"

namespace zarvik::player {

namespace {

constexpr const char* cancelled = "Page load failed with WebErrorStatus: 16";

/// A message of a page. Pages may post what they like, so nothing about it is certain.
void takeMessage(PageState& state, const std::string& text) {
    const auto message = nlohmann::json::parse(text, nullptr, false);
    if (!message.is_object()) {
        return;
    }
    const auto type = textIn(message, "type");
    if (type == "zarvik.webview.titleChanged") {
        state.title = textIn(message, "value");
    } else if (type == "zarvik.webview.urlChanged" && message.contains("urlAction") &&
               message["urlAction"].is_object()) {
        state.url = textIn(message["urlAction"], "Url");
        state.title = textIn(message["urlAction"], "Title");
    }
}

}  // namespace

void PageReports::endLoad(Page& page, const host::Record& record) {
    const bool success = record.method == "HandleLoadFinished";
    page.state.loading = false;
    page.state.failure = success ? std::string() : record.payload;
    if (record.payload != cancelled) {
        page.ends.push_back({.success = success, .reason = record.payload, .time = record.time});
    }
}

void PageReports::take(const host::Record& record) {
    if (record.kind != host::Record::Kind::message) {
        return;
    }
    const std::scoped_lock lock(mutex);
    Page& page = pages[record.target];
    PageState& state = page.state;
    if (record.method == "HandleMessageEmitted") {
        takeMessage(state, record.payload);
        if (record.target == toolbarTarget) {
            toolbarMessages.push_back(record.payload);
        }
    } else if (record.method == "HandleLoadStarted") {
        state.loading = true;
        state.progress = 0;
        state.failure.clear();
    } else if (record.method == "HandleLoadProgressUpdate") {
        std::from_chars(record.payload.data(), record.payload.data() + record.payload.size(), state.progress);
    } else if (record.method == "HandleLoadFinished" || record.method == "HandleLoadFailed") {
        endLoad(page, record);
    } else if (record.method == "HandleCanGoBackResult") {
        state.canGoBack = record.payload == "true";
    } else if (record.method == "HandleCanGoForwardResult") {
        state.canGoForward = record.payload == "true";
    }
}

PageState PageReports::of(const std::string& target) const {
    const std::scoped_lock lock(mutex);
    const auto found = pages.find(target);
    return found == pages.end() ? PageState() : found->second.state;
}

std::vector<LoadEnd> PageReports::takeEndsOfLoads(const std::string& target) {
    const std::scoped_lock lock(mutex);
    const auto found = pages.find(target);
    return found == pages.end() ? std::vector<LoadEnd>() : std::exchange(found->second.ends, {});
}

std::vector<std::string> PageReports::takeToolbarMessages() {
    const std::scoped_lock lock(mutex);
    return std::exchange(toolbarMessages, {});
}

}  // namespace zarvik::player
