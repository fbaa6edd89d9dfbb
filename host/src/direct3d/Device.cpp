#include "direct3d/Device.h"

#include <utility>

#include "direct3d/ShaderResourceView.h"
#include "direct3d/Texture.h"

namespace zarvik::host::direct3d {

namespace {

/// S_FALSE: the arguments are good, but the caller asked for no object.
template <typename Object>
HRESULT checkedOnly(Object** result, HRESULT valid) {
    return valid == S_OK && !result ? S_FALSE : valid;
}

HRESULT STDMETHODCALLTYPE createTexture2D(ID3D11Device* self, const D3D11_TEXTURE2D_DESC* description,
                                          const D3D11_SUBRESOURCE_DATA* initialData,
                                          ID3D11Texture2D** texture) {
    if (texture) {
        *texture = nullptr;
    }
    if (!description) {
        return E_INVALIDARG;
    }
    auto& device = *static_cast<Device*>(self);
    if (const HRESULT fault = device.createTexture2DFault(*description); FAILED(fault)) {
        return fault;
    }
    if (const HRESULT result = checkedOnly(texture, Texture::validate(*description)); result != S_OK) {
        return result;
    }
    if (initialData) {
        return E_NOTIMPL;
    }
    *texture = new Texture(device, *description);
    return S_OK;
}

HRESULT STDMETHODCALLTYPE createShaderResourceView(ID3D11Device* self, ID3D11Resource* resource,
                                                   const D3D11_SHADER_RESOURCE_VIEW_DESC* description,
                                                   ID3D11ShaderResourceView** view) {
    if (view) {
        *view = nullptr;
    }
    Texture* texture = Texture::from(resource);
    if (!texture) {
        return E_INVALIDARG;
    }
    if (const HRESULT fault = static_cast<Device*>(self)->createShaderResourceViewFault(); FAILED(fault)) {
        return fault;
    }
    if (const HRESULT result = checkedOnly(view, ShaderResourceView::validate(description)); result != S_OK) {
        return result;
    }
    *view = new ShaderResourceView(*texture);
    return S_OK;
}

void STDMETHODCALLTYPE getImmediateContext(ID3D11Device* self, ID3D11DeviceContext** context) {
    auto& immediateContext = static_cast<Device*>(self)->immediateContext;
    immediateContext.keep();
    *context = &immediateContext;
}

D3D_FEATURE_LEVEL STDMETHODCALLTYPE getFeatureLevel(ID3D11Device*) {
    return D3D_FEATURE_LEVEL_11_0;
}

UINT STDMETHODCALLTYPE getCreationFlags(ID3D11Device*) {
    return D3D11_CREATE_DEVICE_BGRA_SUPPORT;
}

HRESULT STDMETHODCALLTYPE getDeviceRemovedReason(ID3D11Device*) {
    return S_OK;
}

}  // namespace

const Device::Vtable Device::vtable = [] {
    auto table = makeVtable();
    table.CreateTexture2D = createTexture2D;
    table.CreateShaderResourceView = createShaderResourceView;
    table.GetImmediateContext = getImmediateContext;
    table.GetFeatureLevel = getFeatureLevel;
    table.GetCreationFlags = getCreationFlags;
    table.GetDeviceRemovedReason = getDeviceRemovedReason;
    return table;
}();

Device::Device() : ComObject(vtable) {}

void Device::setFaults(GLDevice::Faults newFaults) {
    auto replacement = std::make_shared<const GLDevice::Faults>(std::move(newFaults));
    const std::scoped_lock lock(faultsMutex);
    faults = std::move(replacement);
}

std::shared_ptr<const GLDevice::Faults> Device::currentFaults() const {
    const std::scoped_lock lock(faultsMutex);
    return faults;
}

HRESULT Device::createTexture2DFault(const D3D11_TEXTURE2D_DESC& description) const {
    const auto faults = currentFaults();
    return faults->createTexture2D ? faults->createTexture2D(description) : S_OK;
}

HRESULT Device::createShaderResourceViewFault() const {
    const auto faults = currentFaults();
    return faults->createShaderResourceView ? faults->createShaderResourceView() : S_OK;
}

HRESULT Device::mapFault() const {
    const auto faults = currentFaults();
    return faults->map ? faults->map() : S_OK;
}

std::uint32_t Device::rowPitch(std::uint32_t width) const {
    const auto faults = currentFaults();
    if (faults->rowPitch) {
        return faults->rowPitch(width);
    }
    return (width * 4 + GLDevice::rowAlignment - 1) / GLDevice::rowAlignment * GLDevice::rowAlignment;
}

}  // namespace zarvik::host::direct3d
