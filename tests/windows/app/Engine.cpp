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

/// Gives one object a virtual table of its own with another function in a slot; returns what was there.
template <typename Pointer, typename Function>
Function replace(void* object, Pointer method, Function function) {
    constexpr std::size_t most = 160;  // more than any interface here has
    auto**& slots = *static_cast<void***>(object);
    auto** const copy = new void*[most];
    std::memcpy(copy, slots, most * sizeof(void*));
    const auto before = reinterpret_cast<Function>(copy[app::slotOf(method)]);
    copy[app::slotOf(method)] = reinterpret_cast<void*>(function);
    slots = copy;
    return before;
}

using Map = HRESULT(__stdcall*)(ID3D11DeviceContext*, ID3D11Resource*, UINT, D3D11_MAP, UINT,
                                D3D11_MAPPED_SUBRESOURCE*);
using CreateTexture = HRESULT(__stdcall*)(ID3D11Device*, const D3D11_TEXTURE2D_DESC*,
                                          const D3D11_SUBRESOURCE_DATA*, ID3D11Texture2D**);
using CreateView = HRESULT(__stdcall*)(ID3D11Device*, ID3D11Resource*, const D3D11_SHADER_RESOURCE_VIEW_DESC*,
                                       ID3D11ShaderResourceView**);

Map realMap;
CreateTexture realCreateTexture;
CreateView realCreateView;

HRESULT __stdcall map(ID3D11DeviceContext* context, ID3D11Resource* resource, UINT index, D3D11_MAP kind,
                      UINT flags, D3D11_MAPPED_SUBRESOURCE* mapped) {
    const bool fails = kind == D3D11_MAP_WRITE_DISCARD && FAILED(Engine::faults.map);
    return fails ? Engine::faults.map : realMap(context, resource, index, kind, flags, mapped);
}

HRESULT __stdcall createTexture(ID3D11Device* device, const D3D11_TEXTURE2D_DESC* description,
                                const D3D11_SUBRESOURCE_DATA* data, ID3D11Texture2D** texture) {
    const bool fails = description->Usage == D3D11_USAGE_DYNAMIC && FAILED(Engine::faults.createTexture);
    return fails ? Engine::faults.createTexture : realCreateTexture(device, description, data, texture);
}

HRESULT __stdcall createView(ID3D11Device* device, ID3D11Resource* resource,
                             const D3D11_SHADER_RESOURCE_VIEW_DESC* description,
                             ID3D11ShaderResourceView** view) {
    return FAILED(Engine::faults.createView) ? Engine::faults.createView
                                             : realCreateView(device, resource, description, view);
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
    realMap = replace(context.get(), &ID3D11DeviceContext::Map, map);
    realCreateTexture = replace(d3dDevice.get(), &ID3D11Device::CreateTexture2D, createTexture);
    realCreateView = replace(d3dDevice.get(), &ID3D11Device::CreateShaderResourceView, createView);

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
