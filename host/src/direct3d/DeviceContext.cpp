#include "direct3d/DeviceContext.h"

#include "direct3d/Device.h"
#include "direct3d/Texture.h"

namespace zarvik::host::direct3d {

namespace {

void STDMETHODCALLTYPE getDevice(ID3D11DeviceContext* self, ID3D11Device** device) {
    Device& owner = static_cast<DeviceContext*>(self)->device;
    owner.keep();
    *device = &owner;
}

HRESULT STDMETHODCALLTYPE map(ID3D11DeviceContext* self, ID3D11Resource* resource, UINT subresource,
                              D3D11_MAP type, UINT, D3D11_MAPPED_SUBRESOURCE* mapped) {
    Texture* texture = Texture::from(resource);
    if (!texture || !mapped || subresource != 0 || type != D3D11_MAP_WRITE_DISCARD) {
        return E_INVALIDARG;
    }
    if (const HRESULT fault = static_cast<DeviceContext*>(self)->device.mapFault(); FAILED(fault)) {
        return fault;
    }
    return texture->map(*mapped);
}

void STDMETHODCALLTYPE unmap(ID3D11DeviceContext*, ID3D11Resource* resource, UINT) {
    if (Texture* texture = Texture::from(resource)) {
        texture->unmap();
    }
}

/// Uploads follow at the end of the render turn: there is nothing to hand to a GPU now.
void STDMETHODCALLTYPE flush(ID3D11DeviceContext*) {}

}  // namespace

const DeviceContext::Vtable DeviceContext::vtable = [] {
    auto table = makeVtable();
    table.AddRef = addRefOfPart;
    table.Release = releaseOfPart;
    table.GetDevice = getDevice;
    table.Map = map;
    table.Unmap = unmap;
    table.Flush = flush;
    return table;
}();

DeviceContext::DeviceContext(Device& device) : ComObject(vtable), device(device) {
    references = 0;
}

ULONG STDMETHODCALLTYPE DeviceContext::addRefOfPart(ID3D11DeviceContext* self) {
    auto* context = static_cast<DeviceContext*>(self);
    context->device.keep();
    return ++context->references;
}

ULONG STDMETHODCALLTYPE DeviceContext::releaseOfPart(ID3D11DeviceContext* self) {
    auto* context = static_cast<DeviceContext*>(self);
    const ULONG left = --context->references;
    context->device.drop();
    return left;
}

}  // namespace zarvik::host::direct3d
