#include "zarvik/host/GLDevice.h"

#include <d3d11.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "zarvik/host/RenderThread.h"
#include "zarvik/host/SurfacelessContext.h"

namespace {

using zarvik::host::GLDevice;
using LiveObjects = GLDevice::LiveObjects;

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using Reference = std::unique_ptr<Interface, Release>;

ULONG referencesOf(IUnknown& object) {
    object.AddRef();
    return object.Release();
}

class GLDeviceTest : public testing::Test {
  protected:
    GLDeviceTest() {
        ID3D11DeviceContext* immediate = nullptr;
        device().GetImmediateContext(&immediate);
        context.reset(immediate);
    }

    ID3D11Device& device() { return *gl->device(); }

    Reference<ID3D11Texture2D> create(UINT width, UINT height) {
        const D3D11_TEXTURE2D_DESC description{.Width = width,
                                               .Height = height,
                                               .MipLevels = 1,
                                               .ArraySize = 1,
                                               .Format = DXGI_FORMAT_B8G8R8A8_UNORM,
                                               .SampleDesc = {.Count = 1, .Quality = 0},
                                               .Usage = D3D11_USAGE_DYNAMIC,
                                               .BindFlags = D3D11_BIND_SHADER_RESOURCE,
                                               .CPUAccessFlags = D3D11_CPU_ACCESS_WRITE,
                                               .MiscFlags = 0};
        ID3D11Texture2D* made = nullptr;
        EXPECT_EQ(device().CreateTexture2D(&description, nullptr, &made), S_OK);
        return Reference<ID3D11Texture2D>(made);
    }

    /// Fills the texture with one number.
    void write(ID3D11Texture2D& texture, UINT height, int number) {
        D3D11_MAPPED_SUBRESOURCE mapped{};
        ASSERT_EQ(context->Map(&texture, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped), S_OK);
        std::memset(mapped.pData, number, std::size_t{mapped.RowPitch} * height);
        context->Unmap(&texture, 0);
    }

    std::unique_ptr<GLDevice> gl = std::make_unique<GLDevice>();
    Reference<ID3D11DeviceContext> context;
    zarvik::host::SurfacelessContext glContext;
    zarvik::host::RenderThread renderThread{glContext, 0, [] {}};
};

TEST_F(GLDeviceTest, ATextureMayOutliveTheOwnerOfItsDevice) {
    const auto texture = create(8, 8);
    write(*texture, 8, 1);
    gl.reset();
    ID3D11Device* kept = nullptr;
    texture->GetDevice(&kept);
    const Reference<ID3D11Device> owner(kept);
    EXPECT_EQ(owner->GetFeatureLevel(), D3D_FEATURE_LEVEL_11_0);
    EXPECT_EQ(referencesOf(*texture), 1U);  // none waits for an upload any more
}

TEST_F(GLDeviceTest, OtherThreadsMayCreateMapAndReleaseWhileTheRenderThreadUploads) {
    const auto produce = [this] {
        for (int i = 0; i < 50; ++i) {
            const auto own = create(40, 30);
            for (int frame = 0; frame < 3; ++frame) {
                write(*own, 30, frame);
            }
        }
    };
    std::array producers{std::jthread(produce), std::jthread(produce)};
    for (int i = 0; i < 100; ++i) {
        renderThread.run([this] { gl->synchronize(); });
    }
    for (auto& producer : producers) {
        producer.join();
    }
    renderThread.run([this] { gl->synchronize(); });
    EXPECT_EQ(gl->liveObjects(), (LiveObjects{0, 0}));
}

}  // namespace
