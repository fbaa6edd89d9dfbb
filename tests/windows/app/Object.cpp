#include "Object.h"

#include <cstdio>
#include <map>
#include <mutex>

#include "World.h"

namespace app {

namespace {

std::mutex mutex;
std::map<std::wstring, int> living;
std::string step = "start";
std::atomic<int> steps;
std::atomic<int> found;

std::string text(const Object& object, const Method& method) {
    return winrt::to_string(object.name()) + ", interface " +
           winrt::to_string(winrt::to_hstring(method.interfaceId)) + ", slot " + std::to_string(method.slot);
}

std::int32_t __stdcall queryInterface(Face* self, const winrt::guid& interfaceId, void** result) {
    *result = self->object->query(interfaceId);
    return *result ? S_OK : E_NOINTERFACE;
}

std::uint32_t __stdcall addReference(Face* self) {
    return self->object->addReference();
}

std::uint32_t __stdcall release(Face* self) {
    return self->object->release();
}

std::int32_t __stdcall getClassName(Face* self, void** name) {
    give(name, winrt::hstring(self->object->name()));
    return S_OK;
}

template <std::size_t slot>
std::int32_t __stdcall unexpected(Face* self) {
    // The table knows its own interface, which stands in front of its slots.
    const auto* const table =
        reinterpret_cast<const Table*>(reinterpret_cast<const char*>(self->slots) - offsetof(Table, slots));
    finding("unexpected call: " + text(*self->object, {table->interfaceId, slot}));
    return E_NOTIMPL;
}

template <std::size_t... slot>
std::array<void*, 160> unanswered(std::index_sequence<slot...>) {
    return {reinterpret_cast<void*>(unexpected<slot>)...};
}

}  // namespace

Table::Table(const winrt::guid& interfaceId)
    : interfaceId(interfaceId), slots(unanswered(std::make_index_sequence<160>())) {
    slots[0] = reinterpret_cast<void*>(queryInterface);
    slots[1] = reinterpret_cast<void*>(addReference);
    slots[2] = reinterpret_cast<void*>(release);
    slots[4] = reinterpret_cast<void*>(getClassName);
}

Object::Object(const wchar_t* className, Threads threads) : className(className), threads(threads) {
    const std::lock_guard lock(mutex);
    ++living[className];
}

Object::~Object() {
    const std::lock_guard lock(mutex);
    --living[className];
}

int Object::alive(const std::wstring& className) {
    const std::lock_guard lock(mutex);
    return living[className];
}

void* Object::query(const winrt::guid& interfaceId) {
    for (Entry& entry : faces) {
        const bool any = interfaceId == winrt::guid_of<winrt::Windows::Foundation::IUnknown>() ||
                         interfaceId == winrt::guid_of<winrt::Windows::Foundation::IInspectable>() ||
                         (interfaceId == winrt::guid_of<winrt::impl::IAgileObject>() &&
                          threads == Threads::any && mayBeKept);
        if (any || entry.interfaceId == interfaceId) {
            addReference();
            return &entry.face;
        }
    }
    return nullptr;
}

std::uint32_t Object::release() {
    const std::uint32_t left = --references;
    if (left == 0) {
        checkThread({});
        delete this;
    }
    return left;
}

void Object::checkThread(const Method& method) const {
    if (threads == Threads::ui && !uiThread().isCurrent()) {
        finding("not on the UI thread: " + text(*this, method));
    }
}

void finding(const std::string& text) {
    ++found;
    const std::lock_guard lock(mutex);
    std::printf("FINDING: %s (%s)\n", text.c_str(), step.c_str());
    std::fflush(stdout);
}

void check(bool right, const std::string& what) {
    if (!right) {
        finding(what);
    }
}

void endProgram() {
    std::fflush(stdout);
    // Nothing is to be unloaded while threads run in it.
    TerminateProcess(GetCurrentProcess(), found == 0 ? 0 : 1);
    std::abort();
}

void beginStep(const std::string& name) {
    const std::lock_guard lock(mutex);
    step = name;
    std::thread([number = ++steps] {
        std::this_thread::sleep_for(std::chrono::seconds(30));
        if (number == steps) {
            finding("it takes too long");
            endProgram();
        }
    }).detach();
}

void enter(const Object& object, const Method& method) {
    object.checkThread(method);
    world().noteCall(method, object.name());
    const Behaviour behaviour = world().behaviourOf(method);
    currentBehaviour = behaviour;
    winrt::check_hresult(behaviour.refusal);
}

}  // namespace app
