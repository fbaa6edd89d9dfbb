#pragma once

#include "platform.h"

#include <d3d11.h>

/// The texture of a web view on the engine's Direct3D 11 device, and the view through which the engine draws
/// it. Both members are references of their own: the web view keeps the texture, while the reference to the
/// view goes to the engine with its announcement and comes back through destroyTexture.
struct EngineTexture {
    winrt::com_ptr<ID3D11Texture2D> texture;
    winrt::com_ptr<ID3D11ShaderResourceView> view;
};

/// The device that the engine renders with, or null. It is asked for at each use and never kept.
winrt::com_ptr<ID3D11Device> engineDevice();

/// Makes a texture of this size that the processor can write to. Both members are null, with an error line,
/// if that fails.
EngineTexture createEngineTexture(std::int32_t width, std::int32_t height);

/// Takes back the engine's reference to an announced shader resource view.
void destroyTexture(void* texturePointer);
