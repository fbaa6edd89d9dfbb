#include "zarvik/host/Scene.h"

#include <epoxy/gl.h>

#include <array>
#include <stdexcept>
#include <string>

namespace zarvik::host {

namespace {

constexpr const char* vertexShader = R"(#version 330 core
uniform vec4 surface;    // x, y, width, height in scene units
uniform mat4 sceneToClip;
out vec2 textureCoordinate;
void main() {
    vec2 corner = vec2(gl_VertexID & 1, gl_VertexID >> 1);
    textureCoordinate = corner;  // row 0 of a frame is its top
    gl_Position = sceneToClip * vec4(surface.xy + corner * surface.zw, 0.0, 1.0);
}
)";

constexpr const char* fragmentShader = R"(#version 330 core
uniform sampler2D frame;
in vec2 textureCoordinate;
out vec4 colour;
void main() { colour = texture(frame, textureCoordinate); }
)";

unsigned compile(GLenum type, const char* source) {
    const unsigned shader = glCreateShader(type);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

unsigned link() {
    const unsigned program = glCreateProgram();
    for (const unsigned shader :
         {compile(GL_VERTEX_SHADER, vertexShader), compile(GL_FRAGMENT_SHADER, fragmentShader)}) {
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    int linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == GL_FALSE) {
        std::array<char, 1024> log{};
        glGetProgramInfoLog(program, log.size(), nullptr, log.data());
        throw std::runtime_error(std::string("The scene's shaders do not link: ") + log.data());
    }
    return program;
}

/// A texture of its own to draw into, for one picture.
class OffscreenTarget {
  public:
    explicit OffscreenTarget(Size size) {
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, size.width, size.height, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
        glGenFramebuffers(1, &framebuffer);
        glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
        if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
            destroy();
            throw std::runtime_error("OpenGL cannot draw a picture of " + std::to_string(size.width) + " x " +
                                     std::to_string(size.height) + " pixels.");
        }
    }
    ~OffscreenTarget() { destroy(); }
    OffscreenTarget(const OffscreenTarget&) = delete;
    OffscreenTarget& operator=(const OffscreenTarget&) = delete;

  private:
    void destroy() {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        glDeleteFramebuffers(1, &framebuffer);
        glDeleteTextures(1, &texture);
    }

    unsigned texture = 0;
    unsigned framebuffer = 0;
};

}  // namespace

Scene::Scene(Size size) : size(size), program(link()) {
    // The corners come from the vertex number, but core OpenGL draws nothing without a vertex array.
    glGenVertexArrays(1, &vertexArray);
}

Scene::~Scene() {
    glDeleteVertexArrays(1, &vertexArray);
    glDeleteProgram(program);
}

void Scene::drawToWindow(std::span<const Surface> surfaces, Size framebuffer) const {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    draw(surfaces, framebuffer, FirstRow::bottom);
}

Image Scene::drawToImage(std::span<const Surface> surfaces) const {
    const OffscreenTarget target(size);
    draw(surfaces, size, FirstRow::top);
    Image image(size.width, size.height);
    glReadPixels(0, 0, size.width, size.height, GL_BGRA, GL_UNSIGNED_BYTE, image.pixels.data());
    return image;
}

void Scene::draw(std::span<const Surface> surfaces, Size target, FirstRow firstRow) const {
    glViewport(0, 0, target.width, target.height);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(GL_BLEND);
    glBlendFunc(GL_ONE, GL_ONE_MINUS_SRC_ALPHA);  // frames are premultiplied

    // Orthographic, column by column. GL's first row is the lower one on a screen, but the first one in
    // memory.
    const float sx = 2.0F / static_cast<float>(size.width);
    const float sy = (firstRow == FirstRow::top ? 2.0F : -2.0F) / static_cast<float>(size.height);
    const float ty = firstRow == FirstRow::top ? -1.0F : 1.0F;
    const std::array<float, 16> sceneToClip{sx, 0, 0, 0, 0, sy, 0, 0, 0, 0, 1, 0, -1, ty, 0, 1};

    glUseProgram(program);
    glBindVertexArray(vertexArray);
    glActiveTexture(GL_TEXTURE0);
    glUniform1i(glGetUniformLocation(program, "frame"), 0);
    glUniformMatrix4fv(glGetUniformLocation(program, "sceneToClip"), 1, GL_FALSE, sceneToClip.data());

    const bool pixelExact = target.width == size.width && target.height == size.height;
    const GLint filter = pixelExact ? GL_NEAREST : GL_LINEAR;
    for (const Surface& surface : surfaces) {
        glBindTexture(GL_TEXTURE_2D, surface.glTexture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
        glUniform4f(glGetUniformLocation(program, "surface"), surface.x, surface.y, surface.width,
                    surface.height);
        glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    }
}

}  // namespace zarvik::host
