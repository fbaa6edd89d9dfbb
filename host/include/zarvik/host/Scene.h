#pragma once

#include <span>

#include "zarvik/host/GLContext.h"
#include "zarvik/host/Image.h"

namespace zarvik::host {

/// What the engine draws: textures on flat surfaces, blended over a transparent background. All of it on the
/// render thread, with its context current.
class Scene {
  public:
    /// A surface in scene units, of which one is one pixel when the scene is drawn in its own size; the
    /// origin is the upper left corner.
    struct Surface {
        unsigned glTexture = 0;
        float x = 0;
        float y = 0;
        float width = 0;
        float height = 0;
    };

    explicit Scene(Size size);
    ~Scene();
    Scene(const Scene&) = delete;
    Scene& operator=(const Scene&) = delete;

    /// Draws into the window's framebuffer of this size, stretched to fill it.
    void drawToWindow(std::span<const Surface> surfaces, Size framebuffer) const;

    /// Draws in the scene's own size, pixel for pixel, and returns the picture.
    Image drawToImage(std::span<const Surface> surfaces) const;

  private:
    enum class FirstRow { top, bottom };
    void draw(std::span<const Surface> surfaces, Size target, FirstRow firstRow) const;

    const Size size;
    const unsigned program;
    unsigned vertexArray = 0;
};

}  // namespace zarvik::host
