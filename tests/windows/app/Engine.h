#pragma once

#include <windows.h>

#include <d3d11.h>

#include <functional>
#include <string>
#include <vector>

#include "exports/UnityInterfaces.h"
#include "platform.h"
#include "zarvik/host/Plugin.h"
#include "zarvik/host/Recorder.h"

/// Misbehaviour of the device: the codes with which these fail.
struct DeviceFaults {
    HRESULT createTexture = S_OK;
    HRESULT createView = S_OK;
    HRESULT map = S_OK;

    bool isAny() const { return FAILED(createTexture) || FAILED(createView) || FAILED(map); }
};

/// An engine with a real Direct3D 11 device, whose render thread is the caller's. One per process.
class Engine {
  public:
    using Record = zarvik::host::Record;

    explicit Engine(const wchar_t* library);

    /// Gives the plug-in the device, or takes it away.
    void offerDevice(bool offered);

    const zarvik::host::PluginExports& plugin() const { return exports; }
    zarvik::host::Recorder& recorder() const { return *calls; }

    static inline DeviceFaults faults;

    /// What the texture of this address shows, rows packed.
    std::vector<std::uint8_t> readPixels(void* view, UINT& width, UINT& height);

  private:
    zarvik::host::PluginExports exports{};
    zarvik::host::Recorder* calls = nullptr;
    winrt::com_ptr<ID3D11Device> d3dDevice;
    winrt::com_ptr<ID3D11DeviceContext> context;
};
