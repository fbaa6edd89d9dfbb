#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>

#include "direct3d/ComObject.h"

namespace zarvik::host::direct3d {

class Device;

/// A dynamic BGRA texture. Keeps its device alive. Map and unmap on any thread; the GL texture is touched by
/// the render thread only. Mapped memory exists from Map until its pixels have been uploaded.
class Texture final : public ComObject<Texture, ID3D11Texture2D> {
  public:
    static constexpr std::array interfaces{IID_IUnknown, IID_ID3D11DeviceChild, IID_ID3D11Resource,
                                           IID_ID3D11Texture2D};

    Texture(Device& device, const D3D11_TEXTURE2D_DESC& description);
    Texture(const Texture&) = delete;
    Texture& operator=(const Texture&) = delete;

    /// The object behind an interface pointer; null if another device made it.
    static Texture* from(ID3D11Resource* resource);

    /// S_OK if a device would make such a texture, E_INVALIDARG if none would, E_NOTIMPL if only this one
    /// does not.
    static HRESULT validate(const D3D11_TEXTURE2D_DESC& description);

    HRESULT map(D3D11_MAPPED_SUBRESOURCE& result);
    void unmap();

    /// Render thread, context current; so is glTexture().
    void upload();
    unsigned glTexture();

    struct Unmaps {
        std::uint64_t count = 0;
        std::chrono::steady_clock::time_point last;
    };
    Unmaps unmaps() const;

    Device& device;
    const D3D11_TEXTURE2D_DESC description;

  private:
    friend ComObject;
    ~Texture();
    static const Vtable vtable;

    /// Memory in the layout that Map reported.
    struct Staging {
        std::unique_ptr<std::byte[]> bytes;
        std::size_t rowPitch = 0;
    };

    mutable std::mutex mutex;
    Staging mapped;
    Staging pendingUpload;
    Unmaps unmapHistory;

    unsigned glName = 0;
};

}  // namespace zarvik::host::direct3d
