#pragma once

// The C view of the interfaces: a table with the members that exist, where the C++ view would demand an
// override for each of some two hundred. Callers with the C++ view see the very same layout.
#define CINTERFACE
#include <d3d11.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <bit>
#include <type_traits>

namespace zarvik::host::direct3d {

/// A reference-counted COM object with one interface chain. `Derived` supplies `interfaces`, the ids that
/// QueryInterface answers, and its vtable, made from `makeVtable()`.
template <typename Derived, typename Interface>
class ComObject : public Interface {
  public:
    using Vtable = std::remove_cvref_t<decltype(*Interface::lpVtbl)>;

    static HRESULT STDMETHODCALLTYPE queryInterface(Interface* self, REFIID id, void** object) {
        if (!object) {
            return E_POINTER;
        }
        if (std::ranges::find(Derived::interfaces, id) == Derived::interfaces.end()) {
            *object = nullptr;
            return E_NOINTERFACE;
        }
        self->lpVtbl->AddRef(self);
        *object = self;
        return S_OK;
    }

    static ULONG STDMETHODCALLTYPE addRef(Interface* self) {
        return static_cast<Derived*>(self)->references.fetch_add(1, std::memory_order_relaxed) + 1;
    }

    static ULONG STDMETHODCALLTYPE release(Interface* self) {
        auto* object = static_cast<Derived*>(self);
        const ULONG left = object->references.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0) {
            delete object;
        }
        return left;
    }

    void keep() { this->lpVtbl->AddRef(this); }
    void drop() { this->lpVtbl->Release(this); }

  private:
    friend Derived;

    explicit ComObject(const Vtable& vtable) { this->lpVtbl = &vtable; }
    ~ComObject() = default;

    /// All slots answer E_NOTIMPL, except IUnknown's.
    static Vtable makeVtable() {
        using Slot = HRESULT (*)();
        std::array<Slot, sizeof(Vtable) / sizeof(Slot)> slots{};
        slots.fill([]() -> HRESULT { return E_NOTIMPL; });
        auto vtable = std::bit_cast<Vtable>(slots);
        vtable.QueryInterface = queryInterface;
        vtable.AddRef = addRef;
        vtable.Release = release;
        return vtable;
    }

    std::atomic<ULONG> references{1};
};

}  // namespace zarvik::host::direct3d
