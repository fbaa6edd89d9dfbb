#include "zarvik/host/GLDevice.h"

#include <d3d11.h>
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include "Renderer.h"
#include "zarvik/host/RenderThread.h"
#include "zarvik/host/SurfacelessContext.h"

namespace {

using zarvik::host::GLDevice;
using zarvik::host::Image;
using LiveObjects = GLDevice::LiveObjects;

struct Release {
    void operator()(IUnknown* object) const { object->Release(); }
};
template <typename Interface>
using Reference = std::unique_ptr<Interface, Release>;

constexpr D3D11_TEXTURE2D_DESC dynamicTexture(UINT width, UINT height) {
    return {.Width = width,
            .Height = height,
            .MipLevels = 1,
            .ArraySize = 1,
            .Format = DXGI_FORMAT_B8G8R8A8_UNORM,
            .SampleDesc = {.Count = 1, .Quality = 0},
            .Usage = D3D11_USAGE_DYNAMIC,
            .BindFlags = D3D11_BIND_SHADER_RESOURCE,
            .CPUAccessFlags = D3D11_CPU_ACCESS_WRITE,
            .MiscFlags = 0};
}

/// A picture in which every pixel differs from its neighbours and all channels count.
Image pattern(int width, int height) {
    Image image(width, height);
    for (std::size_t i = 0; i < image.pixels.size(); ++i) {
        image.pixels[i] = static_cast<std::uint8_t>((i * 7 + i / 256) % 251);
    }
    return image;
}

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

    HRESULT create(const D3D11_TEXTURE2D_DESC& description) {
        ID3D11Texture2D* made = nullptr;
        const HRESULT result = device().CreateTexture2D(&description, nullptr, &made);
        EXPECT_EQ(SUCCEEDED(result), made != nullptr);
        texture.reset(made);
        return result;
    }

    HRESULT createView() {
        ID3D11ShaderResourceView* made = nullptr;
        const HRESULT result = device().CreateShaderResourceView(texture.get(), nullptr, &made);
        EXPECT_EQ(SUCCEEDED(result), made != nullptr);
        view.reset(made);
        return result;
    }

    HRESULT map(D3D11_MAPPED_SUBRESOURCE& mapped) {
        return context->Map(texture.get(), 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped);
    }

    void write(const Image& image) {
        D3D11_MAPPED_SUBRESOURCE mapped{};
        ASSERT_EQ(map(mapped), S_OK);
        const std::size_t rowBytes = static_cast<std::size_t>(image.width) * 4;
        for (int row = 0; row < image.height; ++row) {
            std::memcpy(static_cast<std::byte*>(mapped.pData) + row * std::size_t{mapped.RowPitch},
                        image.pixels.data() + row * rowBytes, rowBytes);
        }
        context->Unmap(texture.get(), 0);
    }

    std::unique_ptr<GLDevice> gl = std::make_unique<GLDevice>();
    Reference<ID3D11DeviceContext> context;
    Reference<ID3D11Texture2D> texture;
    Reference<ID3D11ShaderResourceView> view;
    zarvik::host::SurfacelessContext glContext;
    zarvik::host::RenderThread renderThread{glContext, 0, [] {}};
};

TEST_F(GLDeviceTest, ATextureMayOutliveTheOwnerOfItsDevice) {
    ASSERT_EQ(create(dynamicTexture(8, 8)), S_OK);
    write(pattern(8, 8));
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
            const auto description = dynamicTexture(40, 30);
            ID3D11Texture2D* made = nullptr;
            ASSERT_EQ(device().CreateTexture2D(&description, nullptr, &made), S_OK);
            const Reference<ID3D11Texture2D> own(made);
            for (int frame = 0; frame < 3; ++frame) {
                D3D11_MAPPED_SUBRESOURCE mapped{};
                ASSERT_EQ(context->Map(made, 0, D3D11_MAP_WRITE_DISCARD, 0, &mapped), S_OK);
                std::memset(mapped.pData, frame, mapped.RowPitch * std::size_t{30});
                context->Unmap(made, 0);
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

TEST_F(GLDeviceTest, TheRendererShowsPixelsInPlaceWithTrueColours) {
    using namespace zarvik::player;
    ASSERT_EQ(create(dynamicTexture(31, 17)), S_OK);
    ASSERT_EQ(createView(), S_OK);
    Image image = pattern(31, 17);
    for (std::size_t alpha = 3; alpha < image.pixels.size(); alpha += 4) {
        image.pixels[alpha] = 255;
    }
    write(image);
    const Image drawn = renderThread.run([this] {
        gl->synchronize();
        // The toolbar lies pixel for pixel along the upper edge.
        return Renderer().drawToImage({.stage = std::make_shared<Stage>(std::vector<zarvik::host::Size>{}),
                                       .camera = {},
                                       .window = {.width = 31, .height = 40},
                                       .pages = {},
                                       .toolbar = {.glTexture = gl->glTexture(*view), .uploads = 1},
                                       .toolbarHeight = 17});
    });
    ASSERT_EQ(drawn.width, 31);
    ASSERT_EQ(drawn.height, 40);
    for (int y = 0; y < 17; ++y) {
        for (int x = 0; x < 31; ++x) {
            ASSERT_EQ(drawn.at(x, y), image.at(x, y)) << x << ", " << y;
        }
    }
}

}  // namespace
