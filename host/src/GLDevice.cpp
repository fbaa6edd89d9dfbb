#include "zarvik/host/GLDevice.h"

#include <epoxy/gl.h>

#include <stdexcept>
#include <utility>

#include "direct3d/Device.h"
#include "direct3d/ShaderResourceView.h"
#include "direct3d/Texture.h"

namespace zarvik::host {

namespace {

direct3d::Texture& textureOf(ID3D11ShaderResourceView& view) {
    auto* own = direct3d::ShaderResourceView::from(&view);
    if (!own) {
        throw std::invalid_argument("The shader resource view belongs to another device.");
    }
    return own->texture;
}

}  // namespace

GLDevice::GLDevice() : implementation(new direct3d::Device) {}

GLDevice::~GLDevice() {
    // Textures that wait for their upload keep the device alive, and it keeps them.
    implementation->uploads.clear();
    implementation->drop();
}

ID3D11Device* GLDevice::device() const {
    return implementation;
}

void GLDevice::setFaults(Faults faults) {
    implementation->setFaults(std::move(faults));
}

GLDevice::LiveObjects GLDevice::liveObjects() const {
    return {.textures = implementation->liveTextures, .shaderResourceViews = implementation->liveViews};
}

GLDevice::TextureState GLDevice::textureState(ID3D11ShaderResourceView& view) const {
    const auto& texture = textureOf(view);
    const auto unmaps = texture.unmaps();
    return {.width = static_cast<int>(texture.description.Width),
            .height = static_cast<int>(texture.description.Height),
            .unmaps = unmaps.count,
            .lastUnmap = unmaps.last};
}

void GLDevice::synchronize() {
    implementation->uploads.run();
}

unsigned GLDevice::glTexture(ID3D11ShaderResourceView& view) const {
    return textureOf(view).glTexture();
}

Image GLDevice::readPixels(ID3D11ShaderResourceView& view) const {
    auto& texture = textureOf(view);
    Image image(static_cast<int>(texture.description.Width), static_cast<int>(texture.description.Height));
    glBindTexture(GL_TEXTURE_2D, texture.glTexture());
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, image.pixels.data());
    return image;
}

}  // namespace zarvik::host
