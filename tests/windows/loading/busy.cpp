// A DLL that does at its loading what no DLL may: it asks for a runtime class and loads another library, in
// static initialisers that a system lock surrounds.

#include <winrt/Windows.Foundation.h>

#include <windows.h>

namespace {

winrt::hresult factoryResult() noexcept {
    void* factory = nullptr;
    return WINRT_IMPL_RoGetActivationFactory(
        nullptr, winrt::guid_of<winrt::Windows::Foundation::IActivationFactory>(), &factory);
}

const auto early = factoryResult();
const auto library = LoadLibraryExW(L"urlmon.dll", nullptr, 0);

}  // namespace

extern "C" __declspec(dllexport) int32_t use() {
    return early.value + (library != nullptr);
}
