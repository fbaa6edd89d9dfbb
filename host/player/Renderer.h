#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "Camera.h"
#include "GLObjects.h"
#include "Stage.h"
#include "zarvik/host/Image.h"

namespace zarvik::player {

/// Draws the scene: floor and sky, the pages on their surfaces, their reflections, and the toolbar on top.
/// Lives on the render thread, with its context current.
class Renderer {
  public:
    /// A view's texture; 0 while there is none.
    struct Texture {
        unsigned glTexture = 0;
        std::uint64_t uploads = 0;  // how many pictures it has had: another number is another picture

        bool operator==(const Texture&) const = default;
    };

    /// All that makes a frame. Two that are equal look the same.
    struct Frame {
        std::shared_ptr<const Stage> stage;
        Camera camera;
        host::Size window;
        std::vector<Texture> pages;  // of the stage's surfaces
        Texture toolbar;
        int toolbarHeight = 0;

        bool operator==(const Frame& other) const {
            return stage == other.stage && camera == other.camera && window.width == other.window.width &&
                   window.height == other.window.height && pages == other.pages && toolbar == other.toolbar;
        }
    };

    Renderer();
    ~Renderer();
    Renderer(const Renderer&) = delete;
    Renderer& operator=(const Renderer&) = delete;

    void drawToWindow(const Frame& frame);
    /// Draws where nobody looks.
    void drawOffscreen(const Frame& frame);
    host::Image drawToImage(const Frame& frame);

  private:
    void draw(const Frame& frame, const Program& surface);
    void drawBackdrop(const Frame& frame) const;
    void drawMirrorImages(const Frame& frame) const;
    void drawSurfaces(const Frame& frame, const Program& surface, bool mirrored) const;
    void drawToolbar(const Frame& frame) const;
    void prepareMeshes(const Frame& frame);
    void bindTarget(host::Size size);

    const Program backdrop;
    const Program surfaceInFrame;
    const Program surfaceInPicture;
    const Program surfaceInMirror;
    const Program toolbar;
    unsigned emptyVertexArray = 0;  // core OpenGL draws nothing without one
    std::unique_ptr<OffscreenTarget> target;

    std::shared_ptr<const Stage> meshesOf;
    std::vector<std::unique_ptr<Mesh>> meshes;
};

}  // namespace zarvik::player
