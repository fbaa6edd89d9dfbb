#include "World.h"

#include <ctxtcall.h>

#include <algorithm>

namespace app {

namespace {

/// The context of the UI thread's apartment.
std::atomic<IContextCallback*> uiContext;

/// Runs a call in another apartment. Wine has a context for every apartment, but cannot enter it.
HRESULT __stdcall enterContext(IContextCallback* context, PFNCONTEXTCALL call, ComCallData* data, REFIID, int,
                               IUnknown*) {
    if (context != uiContext) {
        return E_NOTIMPL;
    }
    HRESULT result = E_FAIL;
    uiThread().run([&] { result = call(data); });
    return result;
}

void openContext() {
    winrt::com_ptr<IContextCallback> context;
    winrt::check_hresult(CoGetObjectContext(__uuidof(IContextCallback), context.put_void()));
    void** const slots = *reinterpret_cast<void***>(context.get());
    void** const slot = slots + slotOf(&IContextCallback::ContextCallback);
    DWORD protection = 0;
    winrt::check_bool(VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &protection));
    *slot = reinterpret_cast<void*>(enterContext);
    uiContext = context.detach();
}

}  // namespace

UIThread::UIThread() : thread([this] { loop(); }) {
    std::unique_lock lock(mutex);
    changed.wait(lock, [this] { return id != std::thread::id(); });
}

UIThread::~UIThread() {
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    changed.notify_all();
    thread.join();
}

void UIThread::loop() {
    winrt::check_hresult(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    openContext();
    std::unique_lock lock(mutex);
    id = std::this_thread::get_id();
    changed.notify_all();
    while (!ending) {
        if (work.empty()) {
            changed.wait(lock);
        } else if (const auto due = work.begin()->first; due > Clock::now()) {
            changed.wait_until(lock, due);
        } else {
            const auto next = std::move(work.begin()->second);
            work.erase(work.begin());
            lock.unlock();
            next();
            lock.lock();
        }
    }
}

void UIThread::post(std::function<void()> function, std::chrono::milliseconds delay) {
    {
        const std::lock_guard lock(mutex);
        work.emplace(Clock::now() + delay, std::move(function));
    }
    changed.notify_all();
}

void UIThread::run(const std::function<void()>& function) {
    std::mutex doneMutex;
    std::condition_variable changed;
    bool done = false;
    post([&] {
        function();
        const std::lock_guard lock(doneMutex);
        done = true;
        changed.notify_all();
    });
    std::unique_lock lock(doneMutex);
    changed.wait(lock, [&] { return done; });
}

UIThread& uiThread() {
    static auto& thread = *new UIThread;
    return thread;
}

World& world() {
    static auto& world = *new World;
    return world;
}

void World::behave(const Method& method, const Behaviour& behaviour) {
    const std::lock_guard lock(mutex);
    behaviours.emplace_back(method, behaviour);
}

void World::behaveAsUsual() {
    std::vector<std::function<void()>> ended;
    {
        const std::lock_guard lock(mutex);
        behaviours.clear();
        refusals.clear();
        faulty = false;
        ended.swap(pending);
    }
    for (auto& fail : ended) {
        uiThread().post(std::move(fail));
    }
}

Behaviour World::behaviourOf(const Method& method) {
    const std::lock_guard lock(mutex);
    const auto found = std::ranges::find(behaviours, method, &std::pair<Method, Behaviour>::first);
    Behaviour behaviour = found == behaviours.end() ? Behaviour{} : found->second;
    behaviour.method = method;
    faulty = faulty || found != behaviours.end();
    return behaviour;
}

void World::whenGivenUp(std::function<void()> fail) {
    const std::lock_guard lock(mutex);
    pending.push_back(std::move(fail));
}

void World::refuse(const std::wstring& className) {
    const std::lock_guard lock(mutex);
    refusals.insert(className);
}

bool World::isRefused(const std::wstring& className) {
    const std::lock_guard lock(mutex);
    if (std::ranges::find(classes, className) == classes.end()) {
        classes.push_back(className);
    }
    faulty = faulty || refusals.contains(className);
    return refusals.contains(className);
}

void World::noteCall(const Method& method, const wchar_t* object) {
    const std::lock_guard lock(mutex);
    if (std::ranges::find(methods, method, &std::pair<Method, std::wstring>::first) == methods.end()) {
        methods.emplace_back(method, object);
    }
}

std::vector<std::pair<Method, std::wstring>> World::calledMethods() {
    const std::lock_guard lock(mutex);
    return methods;
}

std::vector<std::pair<Method, std::wstring>> World::operations() {
    const std::lock_guard lock(mutex);
    auto found = methods;
    std::erase_if(
        found, [&](const auto& method) { return std::ranges::find(started, method.first) == started.end(); });
    return found;
}

void World::noteOperation(const Method& method) {
    const std::lock_guard lock(mutex);
    if (std::ranges::find(started, method) == started.end()) {
        started.push_back(method);
    }
}

bool World::wasFaulty() {
    const std::lock_guard lock(mutex);
    return faulty;
}

bool World::hasPending() {
    const std::lock_guard lock(mutex);
    return !pending.empty();
}

std::vector<std::wstring> World::activatedClasses() {
    const std::lock_guard lock(mutex);
    return classes;
}

void World::setScript(const std::wstring& script, ScriptAnswer answer) {
    const std::lock_guard lock(mutex);
    scripts[script] = std::move(answer);
}

std::optional<ScriptAnswer> World::script(const std::wstring& script) {
    const std::lock_guard lock(mutex);
    const auto found = scripts.find(script);
    return found == scripts.end() ? std::nullopt : std::optional(found->second);
}

void World::note(const std::wstring& event) {
    const std::lock_guard lock(mutex);
    notes.push_back(event);
}

bool World::hasNoted(const std::wstring& event) {
    const std::lock_guard lock(mutex);
    return std::ranges::any_of(notes, [&](const auto& note) { return note.starts_with(event); });
}

void World::clearNotes() {
    const std::lock_guard lock(mutex);
    notes.clear();
}

void EndOfOperation::await_suspend(std::coroutine_handle<> handle) const {
    switch (behaviour.end) {
        case Behaviour::End::soon:
            // As long as a display needs for a picture, or nearly.
            uiThread().post(handle, std::chrono::milliseconds(4));
            break;
        case Behaviour::End::onPoolThread:
            std::thread(handle).detach();
            break;
        case Behaviour::End::never:
            world().whenGivenUp([handle, flag = givenUp] {
                *flag = true;
                handle();
            });
    }
}

void EndOfOperation::await_resume() const {
    if (*givenUp) {
        throw winrt::hresult_error(HRESULT_FROM_WIN32(ERROR_CANCELLED));
    }
    // Not check_hresult, which makes other exceptions of some codes.
    if (FAILED(behaviour.failure)) {
        throw winrt::hresult_error(behaviour.failure);
    }
}

}  // namespace app

/// What the system asks for a class of the app's side.
extern "C" __declspec(dllexport) std::int32_t __stdcall getAppFactory(void* classId, void** factory) {
    *factory = nullptr;
    const std::wstring className(reinterpret_cast<const winrt::hstring&>(classId));
    if (app::world().isRefused(className)) {
        return REGDB_E_CLASSNOTREG;
    }
    static const auto& factories = *new auto([] {
        app::Factories all = app::userInterface();
        all.merge(app::webView());
        all.merge(app::content());
        all.merge(app::web());
        return all;
    }());
    const auto make = factories.find(className);
    if (make == factories.end()) {
        app::finding("unknown class: " + winrt::to_string(className));
        return REGDB_E_CLASSNOTREG;
    }
    app::Object* const object = make->second();
    object->forbidKeeping();
    *factory = object->query(winrt::guid_of<foundation::IInspectable>());
    object->release();
    return S_OK;
}
