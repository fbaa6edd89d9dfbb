#include "Session.h"

using zarvik::host::Record;

using app::check;

Session::Session(Engine& engine, int width, int height, bool alwaysCapturePreview)
    : engine(engine), start(engine.recorder().position()), heard(start) {
    static int count = 0;
    target = "view" + std::to_string(++count);
    instance = engine.plugin().WebView_new(target.c_str(), width, height, alwaysCapturePreview);
    key = engine.plugin().WebView_depositPointer(instance);
}

Session::~Session() {
    destroy();
    engine.plugin().WebView_removePointer(instance);
    const bool gone = eventually([] { return app::world()->controls == 0; });
    check(gone, target + ": the control is still there");
    turn();
    for (auto& texture : textures) {
        engine.plugin().WebView_destroyTexture(texture.get());
        auto* const last = texture.detach();
        check(last->Release() == 0, target + ": somebody keeps a texture");
    }
}

void Session::load() {
    const auto from = engine.recorder().position();
    engine.plugin().WebView_loadHtml(instance, "<p>");
    waitForLoad(from);
}

void Session::waitForLoad(std::size_t from) {
    const auto ended = [](const Record& record) { return record.method == "HandleLoadFinished"; };
    check(engine.recorder().waitFor(ended, from, patience).has_value(), target + ": the page was not loaded");
}

std::string Session::evaluate(const std::string& script) const {
    static int count = 0;
    const std::string id = "id" + std::to_string(++count) + ",";
    engine.plugin().WebView_executeJavaScript(instance, script.c_str(), id.substr(0, id.size() - 1).c_str());
    const auto answer = engine.recorder().waitFor(
        [&](const Record& record) { return record.payload.starts_with(id); }, start, patience);
    return answer ? answer->payload.substr(id.size()) : "nothing";
}

void Session::turn() {
    engine.plugin().WebView_getRenderFunction()(key);
    for (const Record& record : engine.recorder().since(heard)) {
        ++heard;
        if (record.method == "HandleTextureChanged" && record.target == target) {
            check(record.thread == std::this_thread::get_id(),
                  target + ": a texture was announced elsewhere");
            // The reference that comes with it goes back at the end.
            winrt::com_ptr<ID3D11ShaderResourceView> texture;
            texture.copy_from(reinterpret_cast<ID3D11ShaderResourceView*>(std::stoull(record.payload)));
            textures.push_back(texture);
        }
    }
}

bool Session::shows(UINT width, UINT height, UINT ignored) {
    return eventually([&] {
        turn();
        UINT textureWidth = 0;
        UINT textureHeight = 0;
        if (textures.empty()) {
            return false;
        }
        const auto pixels = engine.readPixels(textures.back().get(), textureWidth, textureHeight);
        if (textureWidth != width || textureHeight != height) {
            return false;
        }
        for (UINT y = 0; y < height - ignored; ++y) {
            for (UINT x = 0; x < width - ignored; ++x) {
                std::uint32_t pixel = 0;
                std::memcpy(&pixel, &pixels[(std::size_t{y} * width + x) * 4], sizeof pixel);
                if (pixel != app::pixelAt(x, y, app::world()->colour)) {
                    return false;
                }
            }
        }
        return true;
    });
}
