// A game engine in one file: it shows a web page in a texture of a Direct3D 11 device of its own, whose
// textures are plain memory, and writes what it sees into a picture.
//   engine URL PICTURE.ppm

#define CINTERFACE  // the C view of Direct3D: tables of functions, of which only those that are called have
                    // to exist
#include <ZarvikOrvella.h>
#include <d3d11.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

// The device
// ----------------------------------------------------------------------

struct Texture : ID3D11Texture2D {
    D3D11_TEXTURE2D_DESC description{};
    std::vector<char> pixels;  // blue, green, red, alpha; rows without gaps
    std::atomic<ULONG> references = 1;
};

struct View : ID3D11ShaderResourceView {
    Texture* texture = nullptr;
    std::atomic<ULONG> references = 1;
};

template <typename Object, typename Interface>
ULONG addRef(Interface* self) {
    return ++static_cast<Object*>(self)->references;
}

ULONG releaseTexture(ID3D11Texture2D* self) {
    const ULONG left = --static_cast<Texture*>(self)->references;
    if (left == 0) {
        delete static_cast<Texture*>(self);
    }
    return left;
}

ULONG releaseView(ID3D11ShaderResourceView* self) {
    auto* const view = static_cast<View*>(self);
    const ULONG left = --view->references;
    if (left == 0) {
        releaseTexture(view->texture);
        delete view;
    }
    return left;
}

// A resource is always a texture here, and the tables of both begin alike.
Texture* textureOf(ID3D11Resource* resource) {
    return static_cast<Texture*>(reinterpret_cast<ID3D11Texture2D*>(resource));
}

ID3D11Texture2DVtbl textureTable{
    .QueryInterface =
        [](ID3D11Texture2D* self, REFIID, void** object) {
            addRef<Texture>(self);
            *object = self;
            return S_OK;
        },
    .AddRef = addRef<Texture, ID3D11Texture2D>,
    .Release = releaseTexture,
    .GetDesc = [](ID3D11Texture2D* self,
                  D3D11_TEXTURE2D_DESC* result) { *result = static_cast<Texture*>(self)->description; },
};

ID3D11ShaderResourceViewVtbl viewTable{
    .AddRef = addRef<View, ID3D11ShaderResourceView>,
    .Release = releaseView,
    .GetResource =
        [](ID3D11ShaderResourceView* self, ID3D11Resource** resource) {
            ID3D11Texture2D* const texture = static_cast<View*>(self)->texture;
            addRef<Texture>(texture);
            *resource = reinterpret_cast<ID3D11Resource*>(texture);
        },
};

ID3D11DeviceContextVtbl contextTable{
    .Release = [](ID3D11DeviceContext*) { return ULONG{1}; },
    .Map =
        [](ID3D11DeviceContext*, ID3D11Resource* resource, UINT, D3D11_MAP, UINT,
           D3D11_MAPPED_SUBRESOURCE* mapped) {
            Texture* const texture = textureOf(resource);
            *mapped = {.pData = texture->pixels.data(), .RowPitch = texture->description.Width * 4};
            return S_OK;
        },
    .Unmap = [](ID3D11DeviceContext*, ID3D11Resource*, UINT) {},
    .Flush = [](ID3D11DeviceContext*) {},
};
ID3D11DeviceContext context{.lpVtbl = &contextTable};

ID3D11DeviceVtbl deviceTable{
    .AddRef = [](ID3D11Device*) { return ULONG{1}; },
    .Release = [](ID3D11Device*) { return ULONG{1}; },
    .CreateTexture2D =
        [](ID3D11Device*, const D3D11_TEXTURE2D_DESC* description, const D3D11_SUBRESOURCE_DATA*,
           ID3D11Texture2D** created) {
            auto* const texture = new Texture{{&textureTable}, *description, {}};
            texture->pixels.resize(std::size_t{4} * description->Width * description->Height);
            *created = texture;
            return S_OK;
        },
    .CreateShaderResourceView =
        [](ID3D11Device*, ID3D11Resource* resource, const D3D11_SHADER_RESOURCE_VIEW_DESC*,
           ID3D11ShaderResourceView** created) {
            *created = new View{{&viewTable}, textureOf(resource)};
            ++textureOf(resource)->references;
            return S_OK;
        },
    .GetImmediateContext = [](ID3D11Device*, ID3D11DeviceContext** immediate) { *immediate = &context; },
};
ID3D11Device device{.lpVtbl = &deviceTable};

// What the engine offers its plug-ins
// ----------------------------------------------------------------------

struct {
    ID3D11Device* (*GetDevice)() = [] { return &device; };
} graphics;

void* findInterface(std::uint64_t high, std::uint64_t low) {
    return high == 0xAAB37EF87A87D748 && low == 0xBF76967F07EFB177 ? &graphics : nullptr;
}

struct {
    void* unused[2] = {};
    void* (*GetInterfaceSplit)(std::uint64_t high, std::uint64_t low) = findInterface;
} registry;

// The engine
// ----------------------------------------------------------------------

View* shown = nullptr;  // render thread, which is the main thread here
std::atomic<bool> loadEnded = false;

void onMessage(const char*, const char* method, const char* payload) {
    if (std::strcmp(method, "HandleTextureChanged") == 0) {
        auto* const announced = reinterpret_cast<View*>(std::strtoull(payload, nullptr, 10));
        if (View* const replaced = std::exchange(shown, announced)) {
            WebView_destroyTexture(replaced);
        }
    } else if (std::strcmp(method, "HandleLoadFinished") == 0 ||
               std::strcmp(method, "HandleLoadFailed") == 0) {
        loadEnded = true;
    }
}

void writePicture(const Texture& texture, const char* name) {
    std::ofstream file(name, std::ios::binary);
    file << "P6 " << texture.description.Width << ' ' << texture.description.Height << " 255\n";
    for (std::size_t i = 0; i < texture.pixels.size(); i += 4) {
        file << texture.pixels[i + 2] << texture.pixels[i + 1] << texture.pixels[i];
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: engine URL PICTURE.ppm\n");
        return 2;
    }
    UnityPluginLoad(reinterpret_cast<IUnityInterfaces*>(&registry));
    WebView_setSendMessageFunction(onMessage);
    WebView_setLogFunctions(nullptr, nullptr, [](const char* line) { std::fprintf(stderr, "%s\n", line); });

    UwpWebView* const view = WebView_new("page", 640, 480, false);
    const auto key = WebView_depositPointer(view);
    WebView_loadUrl(view, argv[1]);
    // Sixty turns a second, and half a second more for the last picture of the page.
    for (int turnsLeft = 1800; turnsLeft > 0; turnsLeft = loadEnded && turnsLeft > 30 ? 30 : turnsLeft - 1) {
        WebView_getRenderFunction()(key);
        std::this_thread::sleep_for(std::chrono::milliseconds(16));
    }
    const bool drawn = shown != nullptr;
    if (drawn) {
        writePicture(*shown->texture, argv[2]);
    }
    WebView_removePointer(view);
    WebView_destroy(view);
    if (drawn) {
        WebView_destroyTexture(shown);
    }
    return drawn ? 0 : 1;
}
