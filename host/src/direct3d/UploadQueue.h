#pragma once

#include <mutex>
#include <vector>

namespace zarvik::host::direct3d {

class Texture;

/// What the render thread still has to do for textures that other threads may use: fill the GL textures whose
/// memory was unmapped, and delete those whose owner is gone. Owned by the device; any thread may add.
class UploadQueue {
  public:
    /// Keeps a reference to the texture until it was uploaded.
    void addUpload(Texture& texture);
    void addDeletion(unsigned glTexture);

    /// Render thread, context current.
    void run();

    /// Forgets all work, without GL: for a device that is given up.
    void clear();

  private:
    std::mutex mutex;
    std::vector<Texture*> uploads;
    std::vector<unsigned> deletions;
};

}  // namespace zarvik::host::direct3d
