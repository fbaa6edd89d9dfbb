#include "direct3d/Texture.h"

#include <epoxy/gl.h>

#include <utility>

#include "direct3d/Device.h"
#include "zarvik/host/GLDevice.h"

namespace zarvik::host::direct3d {

namespace {

constexpr std::size_t bytesPerPixel = 4;

void STDMETHODCALLTYPE getDevice(ID3D11Texture2D* self, ID3D11Device** device) {
    Device& owner = static_cast<Texture*>(self)->device;
    owner.keep();
    *device = &owner;
}

void STDMETHODCALLTYPE getType(ID3D11Texture2D*, D3D11_RESOURCE_DIMENSION* dimension) {
    *dimension = D3D11_RESOURCE_DIMENSION_TEXTURE2D;
}

void STDMETHODCALLTYPE getDescription(ID3D11Texture2D* self, D3D11_TEXTURE2D_DESC* description) {
    *description = static_cast<Texture*>(self)->description;
}

}  // namespace

const Texture::Vtable Texture::vtable = [] {
    auto table = makeVtable();
    table.GetDevice = getDevice;
    table.GetType = getType;
    table.GetDesc = getDescription;
    return table;
}();

Texture::Texture(Device& device, const D3D11_TEXTURE2D_DESC& description)
    : ComObject(vtable), device(device), description(description) {
    device.keep();
    ++device.liveTextures;
}

Texture::~Texture() {
    if (glName != 0) {
        device.uploads.addDeletion(glName);
    }
    --device.liveTextures;
    device.drop();
}

Texture* Texture::from(ID3D11Resource* resource) {
    auto* texture = reinterpret_cast<ID3D11Texture2D*>(resource);
    return texture && texture->lpVtbl == &vtable ? static_cast<Texture*>(texture) : nullptr;
}

HRESULT Texture::validate(const D3D11_TEXTURE2D_DESC& description) {
    const auto validSize = [](UINT size) { return size > 0 && size <= GLDevice::maxTextureSize; };
    if (!validSize(description.Width) || !validSize(description.Height) || description.ArraySize == 0 ||
        description.SampleDesc.Count == 0 || description.Format == DXGI_FORMAT_UNKNOWN) {
        return E_INVALIDARG;
    }
    switch (description.Usage) {
        case D3D11_USAGE_DYNAMIC:
            if (description.CPUAccessFlags != D3D11_CPU_ACCESS_WRITE || description.MipLevels != 1 ||
                description.ArraySize != 1 || description.SampleDesc.Count != 1 ||
                description.BindFlags != D3D11_BIND_SHADER_RESOURCE) {
                return E_INVALIDARG;
            }
            break;
        case D3D11_USAGE_DEFAULT:
        case D3D11_USAGE_IMMUTABLE:
            return description.CPUAccessFlags != 0 ? E_INVALIDARG : E_NOTIMPL;
        case D3D11_USAGE_STAGING:
            return description.CPUAccessFlags == 0 || description.BindFlags != 0 ? E_INVALIDARG : E_NOTIMPL;
        default:
            return E_INVALIDARG;
    }
    const bool supported = description.Format == DXGI_FORMAT_B8G8R8A8_UNORM && description.MiscFlags == 0;
    return supported ? S_OK : E_NOTIMPL;
}

HRESULT Texture::map(D3D11_MAPPED_SUBRESOURCE& result) {
    const std::size_t packedPitch = description.Width * bytesPerPixel;
    const std::uint32_t reportedPitch = device.rowPitch(description.Width);
    const bool packed = reportedPitch == 0 || reportedPitch == description.Width;

    const std::scoped_lock lock(mutex);
    if (mapped.bytes) {
        return E_INVALIDARG;
    }
    mapped.rowPitch = packed ? packedPitch : reportedPitch;
    const std::size_t size = std::max(mapped.rowPitch, packedPitch) * description.Height;
    mapped.bytes = std::make_unique_for_overwrite<std::byte[]>(size);
    result = {.pData = mapped.bytes.get(), .RowPitch = reportedPitch, .DepthPitch = static_cast<UINT>(size)};
    return S_OK;
}

void Texture::unmap() {
    {
        const std::scoped_lock lock(mutex);
        if (!mapped.bytes) {
            return;
        }
        pendingUpload = std::exchange(mapped, {});
        ++unmapHistory.count;
        unmapHistory.last = std::chrono::steady_clock::now();
    }
    device.uploads.addUpload(*this);
}

Texture::Unmaps Texture::unmaps() const {
    const std::scoped_lock lock(mutex);
    return unmapHistory;
}

unsigned Texture::glTexture() {
    if (glName == 0) {
        glGenTextures(1, &glName);
        glBindTexture(GL_TEXTURE_2D, glName);
        // The bytes go in as they are, without the conversion that a BGRA upload costs on some drivers (seven
        // times the time with llvmpipe); shaders see red and blue in their places.
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, static_cast<GLsizei>(description.Width),
                     static_cast<GLsizei>(description.Height), 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_R, GL_BLUE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_SWIZZLE_B, GL_RED);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    return glName;
}

void Texture::upload() {
    std::unique_lock lock(mutex);
    const Staging source = std::exchange(pendingUpload, {});
    lock.unlock();
    if (!source.bytes) {
        return;  // unmapped twice, uploaded once
    }

    glBindTexture(GL_TEXTURE_2D, glTexture());
    const auto width = static_cast<GLsizei>(description.Width);
    const auto height = static_cast<GLsizei>(description.Height);
    if (source.rowPitch % bytesPerPixel == 0 && source.rowPitch >= description.Width * bytesPerPixel) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(source.rowPitch / bytesPerPixel));
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, source.bytes.get());
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
        return;
    }
    // GL counts rows in whole pixels: rows at any other distance go one by one.
    for (GLsizei row = 0; row < height; ++row) {
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, row, width, 1, GL_RGBA, GL_UNSIGNED_BYTE,
                        source.bytes.get() + static_cast<std::size_t>(row) * source.rowPitch);
    }
}

}  // namespace zarvik::host::direct3d
