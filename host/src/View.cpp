#include "zarvik/host/View.h"

#include <d3d11.h>

#include <charconv>
#include <stdexcept>
#include <thread>
#include <utility>

namespace zarvik::host {

namespace {

constexpr std::string_view failureOfStartedLoad = "Page load failed with WebErrorStatus: ";

using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr milliseconds pollInterval{5};

// When a page counts as painted.
constexpr milliseconds firstFrameGrace{1000};
constexpr milliseconds quietTime{700};  // a PDF document comes a while after its viewer
constexpr milliseconds animationLimit{2000};

std::string uniqueName(const char* prefix) {
    static std::atomic<unsigned> count = 0;
    return prefix + std::to_string(++count);
}

UwpWebView* createInstance(const PluginExports& plugin, const std::string& targetName, Size size,
                           bool alwaysCapturePreview) {
    UwpWebView* instance =
        plugin.WebView_new(targetName.c_str(), size.width, size.height, alwaysCapturePreview ? 1 : 0);
    if (!instance) {
        throw std::runtime_error("The plug-in could not create a web view.");
    }
    return instance;
}

template <typename Predicate>
bool pollUntil(const Predicate& predicate, milliseconds timeout) {
    const auto deadline = steady_clock::now() + timeout;
    while (!predicate()) {
        if (steady_clock::now() >= deadline) {
            return false;
        }
        std::this_thread::sleep_for(pollInterval);
    }
    return true;
}

}  // namespace

void View::Release::operator()(ID3D11ShaderResourceView* view) const {
    view->Release();
}

View::View(Engine& engine, Size size, bool alwaysCapturePreview, std::string name)
    : engine(engine),
      targetName(name.empty() ? uniqueName("View") : std::move(name)),
      instance(createInstance(engine.plugin(), targetName, size, alwaysCapturePreview)),
      depositKey(engine.plugin().WebView_depositPointer(instance)) {
    engine.attach(*this);
}

View::~View() {
    // Once detached, no render callback of this view runs any more.
    engine.detach(*this);
    engine.plugin().WebView_removePointer(instance);
    engine.plugin().WebView_destroy(instance);
    if (texture) {
        replacedTextures.push_back(std::move(texture));
    }
    releaseReplacedTextures();
}

void View::loadUrl(const std::string& url) {
    loadPosition = engine.recorder().position();
    engine.plugin().WebView_loadUrl(instance, url.c_str());
}

void View::loadHtml(const std::string& html) {
    loadPosition = engine.recorder().position();
    engine.plugin().WebView_loadHtml(instance, html.c_str());
}

LoadResult View::waitForLoad(milliseconds timeout) const {
    bool started = false;
    // A load that was under way ends as cancelled before this one starts; only a load that cannot start at
    // all fails without having started.
    const auto failed = [&](const Record& record) {
        return record.method == "HandleLoadFailed" &&
               (started || !record.payload.starts_with(failureOfStartedLoad));
    };
    const auto end = engine.recorder().waitFor(
        [&](const Record& record) {
            if (record.target != targetName) {
                return false;
            }
            started = started || record.method == "HandleLoadStarted";
            return failed(record) || (started && record.method == "HandleLoadFinished");
        },
        loadPosition, timeout);
    if (!end) {
        return {};
    }
    const bool failure = failed(*end);
    return {.outcome = failure ? LoadResult::Outcome::failed : LoadResult::Outcome::finished,
            .reason = failure ? end->payload : std::string(),
            .time = end->time};
}

View::Evaluation View::evaluation(const std::string& script) const {
    const std::string id = uniqueName("evaluate");
    const Evaluation begun{.prefix = id + ",", .from = engine.recorder().position()};
    engine.plugin().WebView_executeJavaScript(instance, script.c_str(), id.c_str());
    return begun;
}

std::optional<std::string> View::resultOf(const Evaluation& evaluation, milliseconds timeout) const {
    const auto answer = engine.recorder().waitFor(
        [&](const Record& record) {
            return record.target == targetName && record.method == "HandleJavaScriptResult" &&
                   record.payload.starts_with(evaluation.prefix);
        },
        evaluation.from, timeout);
    if (!answer) {
        return std::nullopt;
    }
    return answer->payload.substr(evaluation.prefix.size());
}

std::optional<Record> View::waitForMessage(const std::string& method, std::size_t from,
                                           milliseconds timeout) const {
    return engine.recorder().waitFor(
        [&](const Record& record) {
            return record.kind == Record::Kind::message && record.target == targetName &&
                   record.method == method;
        },
        from, timeout);
}

View::UploadState View::uploadState() const {
    const std::scoped_lock lock(mutex);
    if (!texture) {
        return {.count = earlierUploads, .last = {}};
    }
    const auto state = engine.device().textureState(*texture);
    return {.count = earlierUploads + state.unmaps, .last = state.lastUnmap};
}

std::uint64_t View::uploads() const {
    return uploadState().count;
}

bool View::waitForUploads(std::uint64_t atLeast, milliseconds timeout) const {
    return pollUntil([&] { return uploads() >= atLeast; }, timeout);
}

bool View::waitUntilPainted(steady_clock::time_point since, milliseconds timeout) const {
    return pollUntil(
        [&] {
            const auto now = steady_clock::now();
            const auto state = uploadState();
            if (state.count == 0) {
                return false;
            }
            if (state.last < since) {
                // The page may have been painted in full before it finished loading.
                return now - since >= firstFrameGrace;
            }
            return now - state.last >= quietTime || now - since >= animationLimit;
        },
        timeout);
}

Image View::readPixels() const {
    return engine.renderThread().run(
        [this] { return texture ? engine.device().readPixels(*texture) : Image(); });
}

unsigned View::glTexture() const {
    return texture ? engine.device().glTexture(*texture) : 0;
}

void View::changeTexture(const std::string& address) {
    std::uintptr_t value = 0;
    const auto [end, error] = std::from_chars(address.data(), address.data() + address.size(), value);
    if (error != std::errc() || end != address.data() + address.size() || value == 0) {
        throw std::invalid_argument("Not the address of a texture: " + address);
    }
    // NOLINTNEXTLINE(performance-no-int-to-ptr): the plug-in sends the address as text
    auto* view = reinterpret_cast<ID3D11ShaderResourceView*>(value);
    view->AddRef();
    ++announcementCount;

    const std::scoped_lock lock(mutex);
    if (texture) {
        earlierUploads += engine.device().textureState(*texture).unmaps;
        replacedTextures.push_back(std::move(texture));
    }
    texture.reset(view);
}

void View::releaseReplacedTextures() {
    for (const auto& replaced : replacedTextures) {
        engine.plugin().WebView_destroyTexture(replaced.get());
    }
    replacedTextures.clear();
}

}  // namespace zarvik::host
