#pragma once

struct IUnityInterfaces;
struct ID3D11Device;

namespace zarvik::host {

/// The engine's interface registry as a plug-in sees it: it offers the Direct3D 11 graphics interface. Its
/// functions get no context, so there is one registry per process, whose device is exchanged. Any thread.
class InterfaceRegistry {
  public:
    /// Valid for the whole process.
    static IUnityInterfaces* interfaces();

    /// The device that the graphics interface hands out from now on. It is kept until the next one comes: a
    /// web view that is still closing may ask for it after its engine has gone. Null: the registry knows no
    /// graphics interface.
    static void setDevice(ID3D11Device* device);
};

}  // namespace zarvik::host
