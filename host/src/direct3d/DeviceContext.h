#pragma once

#include "direct3d/ComObject.h"

namespace zarvik::host::direct3d {

class Device;

/// The immediate context: a part of its device, which it keeps alive while someone holds a reference to it.
class DeviceContext final : public ComObject<DeviceContext, ID3D11DeviceContext> {
  public:
    static constexpr std::array interfaces{IID_IUnknown, IID_ID3D11DeviceChild, IID_ID3D11DeviceContext};

    explicit DeviceContext(Device& device);

    Device& device;

  private:
    static ULONG STDMETHODCALLTYPE addRefOfPart(ID3D11DeviceContext* self);
    static ULONG STDMETHODCALLTYPE releaseOfPart(ID3D11DeviceContext* self);
    static const Vtable vtable;
};

}  // namespace zarvik::host::direct3d
