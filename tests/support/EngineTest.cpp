#include "support/EngineTest.h"

#include <algorithm>
#include <thread>

#include "support/TestPages.h"

using zarvik::host::Recorder;

std::string urlChanged(const std::string& url) {
    return R"(HandleMessageEmitted { "type": "zarvik.webview.urlChanged", "urlAction": { "Type": "LOAD", )"
           R"("Title": "", "Url": ")" +
           url + R"(" }})";
}

namespace {

bool isFromAgent(const zarvik::host::Record& record) {
    return record.method == "HandleMessageEmitted" && record.payload.starts_with(R"({"type":"zarvik.)");
}

}  // namespace

std::vector<std::string> EngineTest::messagesSince(std::size_t position, const View& view) {
    std::vector<std::string> messages;
    for (const auto& record : recorder().since(position)) {
        if (record.kind == Record::Kind::message && record.target == view.target() &&
            record.method != "HandleTextureChanged" && !isFromAgent(record)) {
            messages.push_back(record.payload.empty() ? record.method : record.method + " " + record.payload);
        }
    }
    return messages;
}

std::vector<std::string> EngineTest::errorsSince(std::size_t position) {
    std::vector<std::string> errors;
    for (const auto& record : recorder().since(position)) {
        if (record.kind == Record::Kind::error) {
            errors.push_back(record.payload.substr(record.payload.find(' ') + 1));
        }
    }
    return errors;
}

bool EngineTest::waitForError(const std::string& text, std::size_t position) {
    return recorder()
        .waitFor(
            [&](const Record& record) {
                return record.kind == Record::Kind::error && record.payload.find(text) != std::string::npos;
            },
            position)
        .has_value();
}

bool waitUntil(const std::function<bool()>& satisfied) {
    const auto limit = std::chrono::steady_clock::now() + zarvik::host::Recorder::defaultTimeout;
    while (!satisfied()) {
        if (std::chrono::steady_clock::now() >= limit) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return true;
}

void EngineTest::load(View& view, const std::string& url) {
    view.loadUrl(url);
    const auto result = view.waitForLoad();
    ASSERT_EQ(result.outcome, LoadResult::Outcome::finished) << url << ": " << result.reason;
}

void EngineTest::loadHtml(View& view, const std::string& html) {
    view.loadHtml(html);
    const auto result = view.waitForLoad();
    ASSERT_EQ(result.outcome, LoadResult::Outcome::finished) << result.reason;
}

bool EngineTest::waitForPixels(const View& view, const std::function<bool(const Image&)>& expected) {
    return waitUntil([&] {
        const auto image = view.readPixels();
        return !image.pixels.empty() && expected(image);
    });
}

bool EngineTest::showsPattern(const View& view, int width, int height) {
    const auto expected = testPattern(width, height);
    return waitForPixels(view, [&](const Image& image) { return image == expected; });
}

bool EngineTest::showsColour(const View& view, int red, int green, int blue) {
    return waitForPixels(view, [&](const Image& image) { return isFilled(image, red, green, blue); });
}

bool EngineTest::waitForResult(const View& view, const std::string& script, const std::string& expected) {
    return waitUntil([&] { return view.evaluate(script) == expected; });
}
