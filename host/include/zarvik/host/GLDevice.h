#pragma once

#include <windows.h>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>

#include "zarvik/host/Image.h"

struct ID3D11Device;
struct ID3D11ShaderResourceView;
struct D3D11_TEXTURE2D_DESC;

namespace zarvik::host {

namespace direct3d {
class Device;
}

/// The engine's Direct3D 11 device, backed by OpenGL.
///
/// It makes dynamic BGRA textures and views of them, and lets them be mapped with WRITE_DISCARD; what else a
/// Direct3D device can do answers E_NOTIMPL. Any thread may create, map and release. The GL objects behind
/// the textures belong to the render thread: they are made, filled and deleted in synchronize().
///
/// The owner keeps it until no one calls the device any more; objects that outlive it are freed by their last
/// Release.
class GLDevice {
  public:
    /// Misbehaviour on request. A callback that returns a failure code makes the call fail with it; one that
    /// returns S_OK, or an empty one, lets the call go on. They run on the calling thread.
    struct Faults {
        std::function<HRESULT(const D3D11_TEXTURE2D_DESC&)> createTexture2D{};
        std::function<HRESULT()> createShaderResourceView{};
        std::function<HRESULT()> map{};
        /// The row pitch in bytes that Map reports for a texture of this width. A pitch of 0 or of the width
        /// in pixels means packed rows, to which the memory is then laid out; any other is the true layout.
        std::function<std::uint32_t(std::uint32_t width)> rowPitch{};
    };

    /// What is alive now; zero once everything was released (a texture that was unmapped lives until the next
    /// synchronize()).
    struct LiveObjects {
        std::size_t textures = 0;
        std::size_t shaderResourceViews = 0;

        bool operator==(const LiveObjects&) const = default;
    };

    struct TextureState {
        int width = 0;
        int height = 0;
        std::uint64_t unmaps = 0;
        std::chrono::steady_clock::time_point lastUnmap;
    };

    /// Rows of mapped memory begin at multiples of this, as with real drivers.
    static constexpr std::uint32_t rowAlignment = 256;
    static constexpr std::uint32_t maxTextureSize = 16384;

    GLDevice();
    ~GLDevice();
    GLDevice(const GLDevice&) = delete;
    GLDevice& operator=(const GLDevice&) = delete;

    /// Borrowed: who keeps it calls AddRef.
    ID3D11Device* device() const;

    void setFaults(Faults faults);
    LiveObjects liveObjects() const;

    /// The state of the texture behind a view of this device, which the caller keeps alive. Any thread.
    TextureState textureState(ID3D11ShaderResourceView& view) const;

    /// Uploads the textures that were unmapped since the last call, and deletes what was released. Render
    /// thread, with its context current; so are the two below.
    void synchronize();

    /// The GL texture behind a view. Its red and blue are swizzled, so that shaders read true colours.
    unsigned glTexture(ID3D11ShaderResourceView& view) const;

    /// The pixels that the GL texture behind a view holds.
    Image readPixels(ID3D11ShaderResourceView& view) const;

  private:
    direct3d::Device* const implementation;
};

}  // namespace zarvik::host
