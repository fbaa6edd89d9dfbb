#include "World.h"

#include <ctxtcall.h>

#include <algorithm>
#include <future>

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

/// What is being called on this thread, and how it is answered.
thread_local std::pair<Method, Behaviour> currentCall;

}  // namespace

void UIThread::loop() {
    winrt::check_hresult(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED));
    openContext();
    std::unique_lock lock(mutex);
    for (;;) {
        if (work.empty()) {
            changed.wait(lock);
        } else if (const auto due = work.begin()->first; due > Clock::now()) {
            changed.wait_until(lock, due);
        } else {
            auto next = work.extract(work.begin());
            lock.unlock();
            next.mapped()();
            // What it keeps may need the world when it goes, and who has the world may post.
            next = {};
            lock.lock();
        }
    }
}

void UIThread::post(std::function<void()> function, std::chrono::milliseconds delay) {
    const std::lock_guard lock(mutex);
    work.emplace(Clock::now() + delay, std::move(function));
    changed.notify_all();
}

void UIThread::run(const std::function<void()>& function) {
    std::promise<void> done;
    post([&] {
        function();
        done.set_value();
    });
    done.get_future().wait();
}

UIThread& uiThread() {
    static auto& thread = *new UIThread;
    return thread;
}

std::string nameOf(const Method& method, const std::wstring& className) {
    return winrt::to_string(className) + ", interface " +
           winrt::to_string(winrt::to_hstring(method.interfaceId)) + ", slot " + std::to_string(method.slot);
}

void World::behaveAsUsual() {
    behaviours.clear();
    refusedClass.clear();
    faulty = false;
    for (auto& fail : std::exchange(pending, {})) {
        uiThread().post(std::move(fail));
    }
}

bool World::hasNoted(const std::wstring& event) const {
    return std::ranges::any_of(notes, [&](const auto& note) { return note.starts_with(event); });
}

void enter(const Object& object, const Method& method) {
    object.checkThread(method);
    currentCall = {method, {}};
    {
        const auto now = world();
        now->methods.try_emplace(method, object.name());
        if (const auto found = now->behaviours.find(method); found != now->behaviours.end()) {
            now->faulty = true;
            currentCall.second = found->second;
        }
    }
    winrt::check_hresult(currentCall.second.refusal);
}

EndOfOperation::EndOfOperation() : behaviour(currentCall.second) {
    world()->methods.at(currentCall.first).startsOperation = true;
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
            world()->pending.emplace_back([handle, flag = givenUp] {
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
    const auto world = app::world();
    if (std::ranges::find(world->classes, className) == world->classes.end()) {
        world->classes.push_back(className);
    }
    if (className == world->refusedClass) {
        world->faulty = true;
        return REGDB_E_CLASSNOTREG;
    }
    static const auto& factories = *new auto([] {
        app::Factories all;
        for (const auto subject : {app::userInterface, app::webView, app::content, app::pictures, app::web}) {
            all.merge(subject());
        }
        return all;
    }());
    const auto found = factories.find(className);
    if (found == factories.end()) {
        app::finding("unknown class: " + winrt::to_string(className));
        return REGDB_E_CLASSNOTREG;
    }
    const winrt::com_ptr<app::Object> object = found->second;
    object->forbidKeeping();
    *factory = object->query(winrt::guid_of<foundation::IInspectable>());
    return S_OK;
}
