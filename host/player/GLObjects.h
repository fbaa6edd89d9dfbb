#pragma once

#include <span>
#include <string>

#include "Geometry.h"
#include "Shape.h"
#include "zarvik/host/GLContext.h"

// Owners of OpenGL objects. All of them belong to the render thread, with its context current.

namespace zarvik::player {

class Program {
  public:
    /// The shaders are compiled with SAMPLES as this number. Throws std::runtime_error with OpenGL's reason.
    Program(const char* vertexShader, const char* fragmentShader, int samples = 1);
    ~Program();
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;

    void use() const;
    void set(const char* uniform, bool value) const;
    void set(const char* uniform, double value) const;
    void set(const char* uniform, Point value) const;
    void set(const char* uniform, const Vector& value) const;
    void set(const char* uniform, const Matrix& value) const;

  private:
    int location(const char* uniform) const;
    const unsigned name;
};

/// A surface's triangles in the memory of the graphics card.
class Mesh {
  public:
    explicit Mesh(const Shape& shape);
    ~Mesh();
    Mesh(const Mesh&) = delete;
    Mesh& operator=(const Mesh&) = delete;

    void draw() const;

  private:
    unsigned vertexArray = 0;
    unsigned vertices = 0;
    unsigned triangles = 0;
    const int count;
};

/// Something to draw into when there is no window.
class OffscreenTarget {
  public:
    /// Throws std::runtime_error if OpenGL cannot draw pictures of this size.
    explicit OffscreenTarget(host::Size size);
    ~OffscreenTarget();
    OffscreenTarget(const OffscreenTarget&) = delete;
    OffscreenTarget& operator=(const OffscreenTarget&) = delete;

    const host::Size size;
    void bind() const;

  private:
    void destroy() const;

    unsigned colour = 0;
    unsigned depth = 0;
    unsigned framebuffer = 0;
};

}  // namespace zarvik::player
