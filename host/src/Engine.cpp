#include "zarvik/host/Engine.h"

#include <pthread.h>

#include <array>
#include <atomic>
#include <mutex>
#include <stdexcept>
#include <utility>

#include "zarvik/host/InterfaceRegistry.h"
#include "zarvik/host/SurfacelessContext.h"
#include "zarvik/host/View.h"

namespace zarvik::host {

/// Where the plug-in's callbacks end. The plug-in's threads may still report when the engine goes away, so
/// the callbacks hold it while they use it.
struct Engine::Inbox {
    const std::thread::id scriptingThread = std::this_thread::get_id();
    std::atomic<std::thread::id> renderThread;
    std::function<void(const Record&)> textureChanged;  // render thread
    Recorder recorder;

    /// Counts itself as under way.
    class Delivery {
      public:
        explicit Delivery(Inbox& inbox) : inbox(inbox) { ++inbox.underWay; }
        Delivery(const Delivery&) = delete;
        Delivery& operator=(const Delivery&) = delete;
        ~Delivery() {
            --inbox.underWay;
            inbox.underWay.notify_all();
        }

      private:
        Inbox& inbox;
    };
    std::atomic<int> underWay = 0;

    static inline std::mutex currentMutex;
    static inline std::shared_ptr<Inbox> current;

    static void receive(Record record);
};

void Engine::Inbox::receive(Record record) {
    std::unique_lock lock(currentMutex);
    const auto inbox = current;
    if (!inbox) {
        return;
    }
    const Delivery delivery(*inbox);
    lock.unlock();
    record.time = std::chrono::steady_clock::now();
    record.thread = std::this_thread::get_id();
    std::array<char, 16> name{};
    pthread_getname_np(pthread_self(), name.data(), name.size());
    record.threadName = name.data();
    if (record.thread == inbox->renderThread.load()) {
        record.role = Record::ThreadRole::render;
        if (record.method == "HandleTextureChanged") {
            try {
                inbox->textureChanged(record);
            } catch (const std::invalid_argument& error) {
                inbox->recorder.add(
                    {.kind = Record::Kind::error, .time = record.time, .payload = error.what()});
            }
        }
    } else if (record.thread == inbox->scriptingThread) {
        record.role = Record::ThreadRole::scripting;
    }
    inbox->recorder.add(std::move(record));
}

namespace {

std::unique_ptr<GLContext> contextUnless(const GLContext* given) {
    return given ? nullptr : std::make_unique<SurfacelessContext>();
}

}  // namespace

Engine::Engine(Options options)
    : library(options.library),
      inbox(std::make_shared<Inbox>()),
      render(plugin().WebView_getRenderFunction()),
      ownContext(contextUnless(options.context)),
      context(options.context ? *options.context : *ownContext) {
    inbox->recorder.setObserver(std::move(options.observer));
    inbox->textureChanged = [this](const Record& record) {
        for (View* view : views) {
            if (view->target() == record.target) {
                view->changeTexture(record.payload);
            }
        }
    };
    thread = std::make_unique<RenderThread>(context, options.turnsPerSecond, [this] { turn(); });
    thread->run([this] { inbox->renderThread = std::this_thread::get_id(); });
    registerCallbacks();
    InterfaceRegistry::setDevice(glDevice.device());
    plugin().UnityPluginLoad(InterfaceRegistry::interfaces());
}

Engine::~Engine() {
    plugin().UnityPluginUnload();
    thread->run([this] {
        drawing = nullptr;
        glDevice.synchronize();
    });
    thread.reset();
    {
        const std::scoped_lock lock(Inbox::currentMutex);
        Inbox::current = nullptr;
    }
    // What observes may be gone right after.
    for (int underWay = inbox->underWay; underWay != 0; underWay = inbox->underWay) {
        inbox->underWay.wait(underWay);
    }
}

Recorder& Engine::recorder() const {
    return inbox->recorder;
}

void Engine::setDrawing(std::function<bool()> draw) {
    thread->run([&] { drawing = std::move(draw); });
}

void Engine::attach(View& view) {
    thread->run([&] { views.push_back(&view); });
}

void Engine::detach(View& view) {
    thread->run([&] { std::erase(views, &view); });
}

void Engine::registerCallbacks() {
    {
        const std::scoped_lock lock(Inbox::currentMutex);
        Inbox::current = inbox;
    }
    plugin().WebView_setSendMessageFunction([](const char* target, const char* method, const char* payload) {
        Inbox::receive(
            {.kind = Record::Kind::message, .target = target, .method = method, .payload = payload});
    });
    plugin().WebView_setDataResultCallback(
        [](const char* target, const char* resultCallbackId, const std::uint8_t* bytes, std::int32_t length) {
            Inbox::receive({.kind = Record::Kind::data,
                            .target = target,
                            .method = resultCallbackId,
                            .bytes = {bytes, bytes + length}});
        });
    plugin().WebView_setLogFunctions(
        [](const char* line) { Inbox::receive({.kind = Record::Kind::info, .payload = line}); },
        [](const char* line) { Inbox::receive({.kind = Record::Kind::warning, .payload = line}); },
        [](const char* line) { Inbox::receive({.kind = Record::Kind::error, .payload = line}); });
}

void Engine::turn() {
    for (const View* view : views) {
        render(view->key());
        glDevice.synchronize();  // each by itself, so that all use the same mapped memory
    }
    glDevice.synchronize();
    if (drawing && drawing()) {
        context.present();
    }
    for (View* view : views) {
        view->releaseReplacedTextures();
    }
}

}  // namespace zarvik::host
