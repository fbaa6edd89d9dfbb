#include "offscreen/EngineTexture.h"

#include <string>

#include "exports/HostChannel.h"
#include "exports/ProcessSettings.h"
#include "exports/UnityInterfaces.h"
#include "offscreen/LogTexts.h"

namespace {

void logFailure(const char* text, HRESULT result) {
    logError(text + std::to_string(static_cast<std::uint32_t>(result)));
}

/// Makes a texture and its only owner, the view.
winrt::com_ptr<ID3D11ShaderResourceView> createTextureView(std::int32_t width, std::int32_t height) {
    const auto device = engineDevice();
    if (!device) {
        logError(log_texts::noEngineDevice);
        return nullptr;
    }
    D3D11_TEXTURE2D_DESC description{};
    description.Width = static_cast<UINT>(width);
    description.Height = static_cast<UINT>(height);
    description.MipLevels = 1;
    description.ArraySize = 1;
    description.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    description.SampleDesc.Count = 1;
    description.Usage = D3D11_USAGE_DYNAMIC;
    description.BindFlags = D3D11_BIND_SHADER_RESOURCE;
    description.CPUAccessFlags = D3D11_CPU_ACCESS_WRITE;

    winrt::com_ptr<ID3D11Texture2D> texture;
    HRESULT result = device->CreateTexture2D(&description, nullptr, texture.put());
    if (FAILED(result)) {
        logFailure(log_texts::textureCreationFailed, result);
        return nullptr;
    }
    winrt::com_ptr<ID3D11ShaderResourceView> view;
    result = device->CreateShaderResourceView(texture.get(), nullptr, view.put());
    if (FAILED(result)) {
        logFailure(log_texts::viewCreationFailed, result);
        return nullptr;
    }
    return view;
}

/// The texture behind a view; null if that fails, with the result.
winrt::com_ptr<ID3D11Texture2D> queryTexture(ID3D11ShaderResourceView& view, HRESULT& result) {
    winrt::com_ptr<ID3D11Resource> resource;
    view.GetResource(resource.put());
    winrt::com_ptr<ID3D11Texture2D> texture;
    result =
        resource ? resource->QueryInterface(__uuidof(ID3D11Texture2D), texture.put_void()) : E_NOINTERFACE;
    return texture;
}

}  // namespace

winrt::com_ptr<ID3D11Device> engineDevice() {
    winrt::com_ptr<ID3D11Device> device;
    if (const IUnityInterfaces* interfaces = processSettings.engineInterfaces) {
        constexpr auto guid = IUnityGraphicsD3D11::guid;
        const auto* graphics =
            static_cast<const IUnityGraphicsD3D11*>(interfaces->GetInterfaceSplit(guid.high, guid.low));
        device.copy_from(graphics ? graphics->GetDevice() : nullptr);
    }
    return device;
}

EngineTexture createEngineTexture(std::int32_t width, std::int32_t height) {
    EngineTexture made{nullptr, createTextureView(width, height)};
    if (made.view) {
        HRESULT result = S_OK;
        made.texture = queryTexture(*made.view, result);
        if (FAILED(result)) {
            logFailure(log_texts::textureQueryFailed, result);
            return {};
        }
    }
    return made;
}

void destroyTexture(void* texturePointer) {
    winrt::com_ptr<ID3D11ShaderResourceView> view;
    view.attach(static_cast<ID3D11ShaderResourceView*>(texturePointer));
    HRESULT result = E_POINTER;
    const auto texture = view ? queryTexture(*view, result) : nullptr;
    if (FAILED(result)) {
        logError(log_texts::destroyQueryFailed + std::to_string(GetLastError()));
    }
}
