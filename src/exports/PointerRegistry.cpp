#include "exports/PointerRegistry.h"

#include <algorithm>

#include "webview/UwpWebView.h"

PointerRegistry& PointerRegistry::shared() {
    // Never destroyed: the engine's render thread may outlive the destructors of the process.
    static auto& registry = *new PointerRegistry;
    return registry;
}

void PointerRegistry::add(std::shared_ptr<UwpWebView> view) {
    const void* pointer = view.get();
    const std::lock_guard lock(mutex);
    views.emplace(pointer, std::move(view));
}

void PointerRegistry::release(const UwpWebView* view) {
    decltype(views)::node_type released;
    const std::lock_guard lock(mutex);
    released = views.extract(view);
}

std::shared_ptr<UwpWebView> PointerRegistry::find(const void* pointer) {
    const std::lock_guard lock(mutex);
    const auto entry = views.find(pointer);
    return entry == views.end() ? nullptr : entry->second;
}

std::int32_t PointerRegistry::deposit(void* pointer) {
    const std::lock_guard lock(mutex);
    std::int32_t key = 0;
    do {
        key = static_cast<std::int32_t>(counter++);
    } while (pointers.contains(key));
    pointers.emplace(key, pointer);
    return key;
}

void PointerRegistry::remove(const void* pointer) {
    const std::lock_guard lock(mutex);
    const auto entry = std::ranges::find(pointers, pointer, [](const auto& entry) { return entry.second; });
    if (entry != pointers.end()) {
        pointers.erase(entry);
    }
}

std::shared_ptr<UwpWebView> PointerRegistry::findByKey(std::int32_t key) {
    const std::lock_guard lock(mutex);
    const auto pointer = pointers.find(key);
    if (pointer == pointers.end()) {
        return nullptr;
    }
    const auto view = views.find(pointer->second);
    return view == views.end() ? nullptr : view->second;
}
