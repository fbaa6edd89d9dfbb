/// What the system asks the component's DLL for. Written without the platform's headers, whose declarations
/// of these two functions do not export them.

#include <cstdint>

#include "JavaScriptBridge.h"

namespace component = winrt::ZarvikWebViewRuntimeComponent;

/// The factory of the class with this name. `classId` is lent, the factory is the caller's.
extern "C" __declspec(dllexport) int32_t __stdcall DllGetActivationFactory(void* classId,
                                                                           void** factory) noexcept try {
    *factory = nullptr;
    auto const& name = *reinterpret_cast<winrt::hstring const*>(&classId);
    if (name != winrt::name_of<component::JavaScriptBridge>()) {
        return winrt::hresult_class_not_available(name).to_abi();
    }
    *factory = winrt::detach_abi(winrt::make<component::factory_implementation::JavaScriptBridge>());
    return 0;
} catch (...) {
    return winrt::to_hresult();
}

/// S_OK (0) while no object of the component exists, else S_FALSE (1).
extern "C" __declspec(dllexport) int32_t __stdcall DllCanUnloadNow() noexcept {
    if (winrt::get_module_lock()) {
        return 1;
    }
    winrt::clear_factory_cache();
    return 0;
}
