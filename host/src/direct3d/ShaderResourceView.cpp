#include "direct3d/ShaderResourceView.h"

#include "direct3d/Device.h"
#include "direct3d/Texture.h"

namespace zarvik::host::direct3d {

namespace {

constexpr UINT allMipLevels = static_cast<UINT>(-1);

Texture& textureOf(ID3D11ShaderResourceView* self) {
    return static_cast<ShaderResourceView*>(self)->texture;
}

void STDMETHODCALLTYPE getDevice(ID3D11ShaderResourceView* self, ID3D11Device** device) {
    textureOf(self).device.keep();
    *device = &textureOf(self).device;
}

void STDMETHODCALLTYPE getResource(ID3D11ShaderResourceView* self, ID3D11Resource** resource) {
    textureOf(self).keep();
    *resource = reinterpret_cast<ID3D11Resource*>(static_cast<ID3D11Texture2D*>(&textureOf(self)));
}

void STDMETHODCALLTYPE getDescription(ID3D11ShaderResourceView* self,
                                      D3D11_SHADER_RESOURCE_VIEW_DESC* result) {
    *result = {};
    result->Format = textureOf(self).description.Format;
    result->ViewDimension = D3D11_SRV_DIMENSION_TEXTURE2D;
    result->Texture2D = {.MostDetailedMip = 0, .MipLevels = 1};
}

}  // namespace

const ShaderResourceView::Vtable ShaderResourceView::vtable = [] {
    auto table = makeVtable();
    table.GetDevice = getDevice;
    table.GetResource = getResource;
    table.GetDesc = getDescription;
    return table;
}();

ShaderResourceView::ShaderResourceView(Texture& texture) : ComObject(vtable), texture(texture) {
    texture.keep();
    ++texture.device.liveViews;
}

ShaderResourceView::~ShaderResourceView() {
    --texture.device.liveViews;
    texture.drop();
}

ShaderResourceView* ShaderResourceView::from(ID3D11ShaderResourceView* view) {
    return view && view->lpVtbl == &vtable ? static_cast<ShaderResourceView*>(view) : nullptr;
}

HRESULT ShaderResourceView::validate(const D3D11_SHADER_RESOURCE_VIEW_DESC* description) {
    if (!description) {
        return S_OK;
    }
    const bool wholeTexture =
        description->ViewDimension == D3D11_SRV_DIMENSION_TEXTURE2D &&
        (description->Format == DXGI_FORMAT_UNKNOWN || description->Format == DXGI_FORMAT_B8G8R8A8_UNORM) &&
        description->Texture2D.MostDetailedMip == 0 &&
        (description->Texture2D.MipLevels == 1 || description->Texture2D.MipLevels == allMipLevels);
    return wholeTexture ? S_OK : E_INVALIDARG;
}

}  // namespace zarvik::host::direct3d
