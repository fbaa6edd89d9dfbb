#pragma once

#include <string>
#include <vector>

#include "Engine.h"
#include "World.h"

constexpr std::chrono::seconds patience{5};

/// Asks until it is true; false when patience is at its end.
template <typename Condition>
bool eventually(Condition condition) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        Sleep(2);
    }
    return true;
}

// What the engine does with a device, one scenario each. Whatever is wrong is a finding.

void playRendering(Engine& engine);
void playFaults(Engine& engine);

/// One offscreen web view of the engine and the textures that it announces.
class Session {
  public:
    Session(Engine& engine, int width, int height, bool alwaysCapturePreview = false);
    /// Destroys the view, if that has not been done, and waits until nothing is left of its control.
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    UwpWebView* view() const { return instance; }
    void destroy() { engine.plugin().WebView_destroy(instance); }

    void load();
    /// Waits for the end of a load since a position of the recorder.
    void waitForLoad(std::size_t from);
    /// A script's result, or "nothing".
    std::string evaluate(const std::string& script) const;
    /// One turn of the render thread.
    void turn();
    /// Waits until the texture shows the picture of now in this size. Of the texture's last columns and rows
    /// as many are left out of account as `ignored` says.
    bool shows(UINT width, UINT height, UINT ignored = 0);
    std::size_t announcements() const { return textures.size(); }

  private:
    Engine& engine;
    std::string target;
    UwpWebView* instance;
    std::int32_t key;
    std::size_t start;
    std::size_t heard;
    /// With a reference of our own to each.
    std::vector<winrt::com_ptr<ID3D11ShaderResourceView>> textures;
};
