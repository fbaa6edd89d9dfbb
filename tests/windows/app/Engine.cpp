#include "Engine.h"

#include "Object.h"
#include "Scenario.h"

namespace {

ID3D11Device* offeredDevice = nullptr;

void* getInterface(std::uint64_t high, std::uint64_t low) {
    static IUnityGraphicsD3D11 graphics{[] { return offeredDevice; }};
    const bool known = high == IUnityGraphicsD3D11::guid.high && low == IUnityGraphicsD3D11::guid.low;
    return known && offeredDevice ? &graphics : nullptr;
}

/// A method that fails with a code as long as there is one.
template <auto fault, typename Object, typename... Arguments>
struct Faulty {
    static inline HRESULT(__stdcall* real)(Object*, Arguments...) = nullptr;

    static HRESULT __stdcall call(Object* object, Arguments... arguments) {
        const HRESULT code = Engine::faults.*fault;
        return FAILED(code) ? code : real(object, arguments...);
    }
};

/// Gives one object a virtual table of its own, in which the method is a faulty one.
template <auto fault, typename Object, typename... Arguments>
void makeFaulty(Object* object, HRESULT (__stdcall Object::*method)(Arguments...)) {
    using Method = Faulty<fault, Object, Arguments...>;
    constexpr std::size_t most = 160;  // more than any interface here has
    auto**& slots = *reinterpret_cast<void***>(object);
    auto** const copy = new void*[most];
    std::memcpy(copy, slots, most * sizeof(void*));
    auto*& slot = copy[app::slotOf(method)];
    Method::real = reinterpret_cast<decltype(Method::real)>(slot);
    slot = reinterpret_cast<void*>(Method::call);
    slots = copy;
}

}  // namespace

Engine::Engine(const wchar_t* library) {
    const HMODULE module = LoadLibraryW(library);
    if (!module) {
        throw winrt::hresult_error(HRESULT_FROM_WIN32(GetLastError()), L"the plug-in cannot be loaded");
    }
#define ZARVIK_EXPORT(result, name, parameters) \
    exports.name =                              \
        reinterpret_cast<result(*) parameters>(reinterpret_cast<void*>(GetProcAddress(module, #name)));
#include "exports/ExportTable.inc"
#undef ZARVIK_EXPORT

    winrt::check_hresult(D3D11CreateDevice(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0,
                                           D3D11_SDK_VERSION, d3dDevice.put(), nullptr, context.put()));
    makeFaulty<&DeviceFaults::map>(context.get(), &ID3D11DeviceContext::Map);
    makeFaulty<&DeviceFaults::createTexture>(d3dDevice.get(), &ID3D11Device::CreateTexture2D);
    makeFaulty<&DeviceFaults::createView>(d3dDevice.get(), &ID3D11Device::CreateShaderResourceView);

    calls = &connectRecorder(exports);
    static IUnityInterfaces interfaces{nullptr, nullptr, getInterface, nullptr};
    exports.UnityPluginLoad(&interfaces);
}

void Engine::offerDevice(bool offered) {
    offeredDevice = offered ? d3dDevice.get() : nullptr;
}

std::vector<std::uint8_t> Engine::readPixels(void* view, UINT& width, UINT& height) {
    winrt::com_ptr<ID3D11Resource> texture;
    static_cast<ID3D11ShaderResourceView*>(view)->GetResource(texture.put());
    D3D11_TEXTURE2D_DESC description{};
    texture.as<ID3D11Texture2D>()->GetDesc(&description);
    width = description.Width;
    height = description.Height;
    description.Usage = D3D11_USAGE_STAGING;
    description.BindFlags = 0;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_READ;
    winrt::com_ptr<ID3D11Texture2D> staging;
    winrt::check_hresult(d3dDevice->CreateTexture2D(&description, nullptr, staging.put()));
    context->CopyResource(staging.get(), texture.get());
    D3D11_MAPPED_SUBRESOURCE mapped{};
    winrt::check_hresult(context->Map(staging.get(), 0, D3D11_MAP_READ, 0, &mapped));
    std::vector<std::uint8_t> pixels(std::size_t{width} * height * 4);
    for (UINT y = 0; y < height; ++y) {
        std::memcpy(&pixels[std::size_t{y} * width * 4],
                    static_cast<const std::uint8_t*>(mapped.pData) + std::size_t{y} * mapped.RowPitch,
                    std::size_t{width} * 4);
    }
    context->Unmap(staging.get(), 0);
    return pixels;
}
