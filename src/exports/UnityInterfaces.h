#pragma once

#include <cstdint>

struct ID3D11Device;

/// The engine's plug-in interfaces, as far as this library uses them: tables of C functions whose order is
/// the engine's binary contract.

struct UnityInterfaceGUID {
    std::uint64_t high;
    std::uint64_t low;
};

/// The registry. An interface is asked for with GetInterfaceSplit: how a 16-byte GUID travels by value
/// differs between calling conventions.
struct IUnityInterfaces {
    void* (*GetInterface)(UnityInterfaceGUID guid);
    void (*RegisterInterface)(UnityInterfaceGUID guid, void* object);
    void* (*GetInterfaceSplit)(std::uint64_t high, std::uint64_t low);
    void (*RegisterInterfaceSplit)(std::uint64_t high, std::uint64_t low, void* object);
};

/// The engine's Direct3D 11 side. The table goes on after GetDevice, with entries that nothing here needs.
struct IUnityGraphicsD3D11 {
    static constexpr UnityInterfaceGUID guid{0xAAB37EF87A87D748ULL, 0xBF76967F07EFB177ULL};

    /// The device stays the engine's: the caller gets no reference of its own.
    ID3D11Device* (*GetDevice)();
};
