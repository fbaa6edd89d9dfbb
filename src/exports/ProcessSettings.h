#pragma once

#include <atomic>

#include "exports/ZarvikOrvella.h"

/// What the engine sets for the whole process. Written by exports on the engine's thread and read wherever
/// the setting matters, so a change affects every web view at its next read.
struct ProcessSettings {
    /// The registry through which the engine's Direct3D 11 device is found; null until the engine loads us.
    std::atomic<IUnityInterfaces*> engineInterfaces{nullptr};
    std::atomic<bool> cameraAndMicrophoneEnabled{false};
    std::atomic<bool> geolocationEnabled{false};
    std::atomic<bool> storageEnabled{true};
};

inline constinit ProcessSettings processSettings;
