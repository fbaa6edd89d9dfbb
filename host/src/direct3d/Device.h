#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

#include "direct3d/ComObject.h"
#include "direct3d/DeviceContext.h"
#include "direct3d/UploadQueue.h"
#include "zarvik/host/GLDevice.h"

namespace zarvik::host::direct3d {

/// The device object: makes textures and views, counts them, and holds what they share. It lives until the
/// last object that it made, and the GLDevice that owns it, have released it. Any thread.
class Device final : public ComObject<Device, ID3D11Device> {
  public:
    static constexpr std::array interfaces{IID_IUnknown, IID_ID3D11Device};

    Device();

    void setFaults(GLDevice::Faults faults);

    // What the fault callbacks say; S_OK and the usual pitch where there are none.
    HRESULT createTexture2DFault(const D3D11_TEXTURE2D_DESC& description) const;
    HRESULT createShaderResourceViewFault() const;
    HRESULT mapFault() const;
    std::uint32_t rowPitch(std::uint32_t width) const;

    DeviceContext immediateContext{*this};
    UploadQueue uploads;
    std::atomic<std::size_t> liveTextures = 0;
    std::atomic<std::size_t> liveViews = 0;

  private:
    friend ComObject;
    ~Device() = default;
    static const Vtable vtable;

    /// A callback may run while another thread replaces them.
    std::shared_ptr<const GLDevice::Faults> currentFaults() const;

    mutable std::mutex faultsMutex;
    std::shared_ptr<const GLDevice::Faults> faults = std::make_shared<GLDevice::Faults>();
};

}  // namespace zarvik::host::direct3d
