#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>

class UwpWebView;

/// The pointers that cross the boundary. It keeps one reference to every web view on behalf of the engine,
/// which holds only the plain pointer, and the integer keys by which the engine's render events name a web
/// view. So a pointer that is stale or was never ours is noticed and never dereferenced.
///
/// Process-wide; safe on every thread. Nothing is called or released while its mutex is held.
class PointerRegistry {
  public:
    static PointerRegistry& shared();

    /// Takes the engine's reference to a new web view.
    void add(std::shared_ptr<UwpWebView> view);

    /// Gives up the engine's reference; the pointer means nothing from now on.
    void release(const UwpWebView* view);

    /// The live web view behind a pointer from the engine, or null.
    std::shared_ptr<UwpWebView> find(const void* pointer);

    /// Registers a pointer under a key of its own. The same pointer may be deposited several times.
    std::int32_t deposit(void* pointer);

    /// Removes the first entry that holds this pointer, if there is one.
    void remove(const void* pointer);

    /// The live web view deposited under the key, or null.
    std::shared_ptr<UwpWebView> findByKey(std::int32_t key);

  private:
    std::mutex mutex;
    std::map<const void*, std::shared_ptr<UwpWebView>> views;
    std::map<std::int32_t, void*> pointers;
    /// Unsigned, because the keys wrap around.
    std::uint32_t counter = 0;
};
