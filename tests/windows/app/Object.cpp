#include "Object.h"

#include <algorithm>
#include <cstdio>
#include <mutex>

#include "World.h"

namespace app {

namespace {

std::mutex mutex;
std::string step = "start";
std::atomic<int> steps;
std::atomic<int> found;

std::int32_t __stdcall queryInterface(Face* self, const winrt::guid& interfaceId, void** result) {
    *result = self->object.query(interfaceId);
    return *result ? S_OK : E_NOINTERFACE;
}

std::uint32_t __stdcall addReference(Face* self) {
    return self->object.AddRef();
}

std::uint32_t __stdcall release(Face* self) {
    return self->object.Release();
}

std::int32_t __stdcall getClassName(Face* self, void** name) {
    give(name, winrt::hstring(self->object.name()));
    return S_OK;
}

template <std::size_t slot>
std::int32_t __stdcall unexpected(Face* self) {
    finding("unexpected call: " + nameOf({self->interfaceId, slot}, self->object.name()));
    return E_NOTIMPL;
}

template <std::size_t... slot>
std::array<void*, 160> unanswered(std::index_sequence<slot...>) {
    return {reinterpret_cast<void*>(unexpected<slot>)...};
}

}  // namespace

Face::Face(Object& object, const winrt::guid& interfaceId)
    : object(object), interfaceId(interfaceId), slots(unanswered(std::make_index_sequence<160>())) {
    table = slots.data();
    slots[0] = reinterpret_cast<void*>(queryInterface);
    slots[1] = reinterpret_cast<void*>(addReference);
    slots[2] = reinterpret_cast<void*>(release);
    slots[4] = reinterpret_cast<void*>(getClassName);
}

void* Object::query(const winrt::guid& interfaceId) {
    for (Face& face : faces) {
        const bool any = interfaceId == winrt::guid_of<foundation::IUnknown>() ||
                         interfaceId == winrt::guid_of<foundation::IInspectable>() ||
                         (interfaceId == winrt::guid_of<winrt::impl::IAgileObject>() &&
                          threads == Threads::any && mayBeKept);
        if (any || face.interfaceId == interfaceId) {
            AddRef();
            return &face;
        }
    }
    return nullptr;
}

Face& Object::face(const winrt::guid& interfaceId) {
    const auto found = std::ranges::find(faces, interfaceId, &Face::interfaceId);
    return found != faces.end() ? *found : faces.emplace_back(*this, interfaceId);
}

std::uint32_t Object::Release() {
    const std::uint32_t left = --references;
    if (left == 0) {
        checkThread({});
        delete this;
    }
    return left;
}

void Object::checkThread(const Method& method) const {
    if (threads == Threads::ui && !uiThread().isCurrent()) {
        finding("not on the UI thread: " + nameOf(method, className));
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

}  // namespace app
