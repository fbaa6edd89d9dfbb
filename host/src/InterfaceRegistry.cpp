#include "zarvik/host/InterfaceRegistry.h"

#include <d3d11.h>

#include <atomic>
#include <cstdint>

// The engine's binary contract: tables of C functions in this order.

struct UnityInterfaceGUID {
    std::uint64_t high;
    std::uint64_t low;
};

struct IUnityInterfaces {
    void* (*GetInterface)(UnityInterfaceGUID guid);
    void (*RegisterInterface)(UnityInterfaceGUID guid, void* implementation);
    void* (*GetInterfaceSplit)(std::uint64_t high, std::uint64_t low);
    void (*RegisterInterfaceSplit)(std::uint64_t high, std::uint64_t low, void* implementation);
};

/// The engine's own table is longer; no plug-in here reads on.
struct IUnityGraphicsD3D11 {
    ID3D11Device* (*GetDevice)();
};

namespace zarvik::host {

namespace {

std::atomic<ID3D11Device*> currentDevice = nullptr;

IUnityGraphicsD3D11 graphics{.GetDevice = [] { return currentDevice.load(); }};

void* getInterface(std::uint64_t high, std::uint64_t low) {
    const bool wantsGraphics = high == 0xAAB37EF87A87D748 && low == 0xBF76967F07EFB177;
    return wantsGraphics && currentDevice.load() ? &graphics : nullptr;
}

// No plug-in offers interfaces to this engine's other plug-ins, for there are none.
IUnityInterfaces registry{
    .GetInterface = [](UnityInterfaceGUID guid) { return getInterface(guid.high, guid.low); },
    .RegisterInterface = [](UnityInterfaceGUID, void*) {},
    .GetInterfaceSplit = getInterface,
    .RegisterInterfaceSplit = [](std::uint64_t, std::uint64_t, void*) {},
};

}  // namespace

IUnityInterfaces* InterfaceRegistry::interfaces() {
    return &registry;
}

void InterfaceRegistry::setDevice(ID3D11Device* device) {
    if (device) {
        device->AddRef();
    }
    if (ID3D11Device* previous = currentDevice.exchange(device)) {
        previous->Release();
    }
}

}  // namespace zarvik::host
