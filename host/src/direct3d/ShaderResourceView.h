#pragma once

#include "direct3d/ComObject.h"

namespace zarvik::host::direct3d {

class Texture;

/// A view of a whole texture, which it keeps alive. Immutable, so any thread may use it.
class ShaderResourceView final : public ComObject<ShaderResourceView, ID3D11ShaderResourceView> {
  public:
    static constexpr std::array interfaces{IID_IUnknown, IID_ID3D11DeviceChild, IID_ID3D11View,
                                           IID_ID3D11ShaderResourceView};

    explicit ShaderResourceView(Texture& texture);
    ShaderResourceView(const ShaderResourceView&) = delete;
    ShaderResourceView& operator=(const ShaderResourceView&) = delete;

    /// The object behind an interface pointer; null if another device made it.
    static ShaderResourceView* from(ID3D11ShaderResourceView* view);

    /// S_OK if the description (null: the default) asks for the whole texture, else E_INVALIDARG.
    static HRESULT validate(const D3D11_SHADER_RESOURCE_VIEW_DESC* description);

    Texture& texture;

  private:
    friend ComObject;
    ~ShaderResourceView();
    static const Vtable vtable;
};

}  // namespace zarvik::host::direct3d
