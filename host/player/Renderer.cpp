#include "Renderer.h"

#include <epoxy/gl.h>

#include <algorithm>
#include <numeric>

#include "Shaders.h"

namespace zarvik::player {

namespace {

// How often a page is looked up for one pixel, a side. The mirror images are dim.
constexpr int samplesInFrames = 2;
constexpr int samplesInPictures = 4;
constexpr int samplesInMirror = 1;

/// The matrix that turns a place in clip coordinates into the direction in which the camera sees it.
Matrix clipToDirection(const Camera& camera, host::Size window) {
    const auto towards = [&](double x, double y) {
        const auto ray = camera.rayThrough({x * window.width, y * window.height}, window);
        return ray.direction;
    };
    // Directions are normalised; brought to the same depth, they differ by the axes.
    const Vector forward = towards(0.5, 0.5);
    const auto axis = [&](const Vector& direction) {
        return direction * (1 / dot(direction, forward)) - forward;
    };
    const Vector right = axis(towards(1, 0.5));
    const Vector up = axis(towards(0.5, 0));
    return {right.x,   right.y,   right.z,   0,  //
            up.x,      up.y,      up.z,      0,  //
            forward.x, forward.y, forward.z, 0,  //
            0,         0,         0,         0};
}

/// Of the bound texture.
void setFilter(GLint filter) {
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
}

double distanceTo(const Shape& shape, const Vector& eye) {
    Vector sum;
    for (const auto& vertex : shape.vertices) {
        sum = sum + vertex.position;
    }
    const Vector offset = sum * (1 / static_cast<double>(shape.vertices.size())) - eye;
    return dot(offset, offset);
}

}  // namespace

Renderer::Renderer()
    : backdrop(shaders::backdropVertex, shaders::backdropFragment),
      surfaceInFrame(shaders::surfaceVertex, shaders::surfaceFragment, samplesInFrames),
      surfaceInPicture(shaders::surfaceVertex, shaders::surfaceFragment, samplesInPictures),
      surfaceInMirror(shaders::surfaceVertex, shaders::surfaceFragment, samplesInMirror),
      toolbar(shaders::toolbarVertex, shaders::toolbarFragment) {
    glGenVertexArrays(1, &emptyVertexArray);
}

Renderer::~Renderer() {
    glDeleteVertexArrays(1, &emptyVertexArray);
}

void Renderer::drawToWindow(const Frame& frame) {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    draw(frame, surfaceInFrame);
}

void Renderer::drawOffscreen(const Frame& frame) {
    bindTarget(frame.window);
    draw(frame, surfaceInFrame);
    glFinish();  // there is no window system that would wait for it
}

host::Image Renderer::drawToImage(const Frame& frame) {
    bindTarget(frame.window);
    draw(frame, surfaceInPicture);
    host::Image lowestRowFirst(frame.window.width, frame.window.height);
    glReadPixels(0, 0, frame.window.width, frame.window.height, GL_BGRA, GL_UNSIGNED_BYTE,
                 lowestRowFirst.pixels.data());
    host::Image image(frame.window.width, frame.window.height);
    const auto rowBytes = static_cast<std::ptrdiff_t>(frame.window.width) * 4;
    for (std::ptrdiff_t row = 0; row < frame.window.height; ++row) {
        const auto source = lowestRowFirst.pixels.begin() + (frame.window.height - 1 - row) * rowBytes;
        std::copy(source, source + rowBytes, image.pixels.begin() + row * rowBytes);
    }
    return image;
}

void Renderer::bindTarget(host::Size size) {
    if (!target || target->size.width != size.width || target->size.height != size.height) {
        target.reset();
        target = std::make_unique<OffscreenTarget>(size);
    }
    target->bind();
}

void Renderer::prepareMeshes(const Frame& frame) {
    if (meshesOf != frame.stage) {
        meshes.clear();
        for (const Shape& shape : frame.stage->surfaces()) {
            meshes.push_back(std::make_unique<Mesh>(shape));
        }
        meshesOf = frame.stage;
    }
}

void Renderer::draw(const Frame& frame, const Program& surface) {
    prepareMeshes(frame);
    glActiveTexture(GL_TEXTURE0);
    glViewport(0, 0, frame.window.width, frame.window.height);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    drawBackdrop(frame);

    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);  // frames are premultiplied
    glEnable(GL_DEPTH_TEST);
    glClear(GL_DEPTH_BUFFER_BIT);
    drawMirrorImages(frame);
    // The mirror images are below everything else.
    glClear(GL_DEPTH_BUFFER_BIT);
    drawSurfaces(frame, surface, false);

    glDisable(GL_DEPTH_TEST);
    drawToolbar(frame);
}

void Renderer::drawBackdrop(const Frame& frame) const {
    backdrop.use();
    backdrop.set("eye", frame.camera.position());
    backdrop.set("clipToDirection", clipToDirection(frame.camera, frame.window));
    glBindVertexArray(emptyVertexArray);
    glDrawArrays(GL_TRIANGLES, 0, 3);
}

void Renderer::drawMirrorImages(const Frame& frame) const {
    glEnable(GL_CLIP_DISTANCE0);
    drawSurfaces(frame, surfaceInMirror, true);
    glDisable(GL_CLIP_DISTANCE0);
}

void Renderer::drawSurfaces(const Frame& frame, const Program& surface, bool mirrored) const {
    const auto& shapes = frame.stage->surfaces();
    const Vector eye = frame.camera.position();
    std::vector<std::size_t> order(shapes.size());
    std::iota(order.begin(), order.end(), 0U);
    // Pages may be transparent: the farthest comes first.
    std::ranges::sort(order, [&](std::size_t a, std::size_t b) {
        return distanceTo(shapes[a], eye) > distanceTo(shapes[b], eye);
    });

    surface.use();
    surface.set("worldToClip", frame.camera.worldToClip(frame.window));
    surface.set("mirrored", mirrored);
    for (const std::size_t i : order) {
        const unsigned texture = i < frame.pages.size() ? frame.pages[i].glTexture : 0;
        surface.set("painted", texture != 0);
        surface.set("framed", shapes[i].framed);
        surface.set("surfaceSize", Point{shapes[i].width, shapes[i].height});
        glBindTexture(GL_TEXTURE_2D, texture);
        setFilter(GL_LINEAR);
        meshes[i]->draw();
    }
}

void Renderer::drawToolbar(const Frame& frame) const {
    if (frame.toolbar.glTexture == 0) {
        return;
    }
    glBindTexture(GL_TEXTURE_2D, frame.toolbar.glTexture);
    setFilter(GL_NEAREST);
    toolbar.use();
    toolbar.set("lowerEdge", 1 - 2.0 * frame.toolbarHeight / frame.window.height);
    glBindVertexArray(emptyVertexArray);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
}

}  // namespace zarvik::player
