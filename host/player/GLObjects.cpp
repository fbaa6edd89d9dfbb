#include "GLObjects.h"

#include <epoxy/gl.h>

#include <array>
#include <stdexcept>
#include <vector>

namespace zarvik::player {

namespace {

unsigned compile(GLenum type, const char* source, int samples) {
    const unsigned shader = glCreateShader(type);
    const std::string head = "#version 330 core\n#define SAMPLES " + std::to_string(samples) + "\n";
    const std::array sources{head.c_str(), source};
    glShaderSource(shader, static_cast<GLsizei>(sources.size()), sources.data(), nullptr);
    glCompileShader(shader);
    return shader;
}

unsigned link(const char* vertexShader, const char* fragmentShader, int samples) {
    const unsigned program = glCreateProgram();
    for (const unsigned shader : {compile(GL_VERTEX_SHADER, vertexShader, samples),
                                  compile(GL_FRAGMENT_SHADER, fragmentShader, samples)}) {
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    int linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked == GL_FALSE) {
        std::array<char, 1024> log{};
        glGetProgramInfoLog(program, log.size(), nullptr, log.data());
        glDeleteProgram(program);
        throw std::runtime_error(std::string("The scene's shaders do not link: ") + log.data());
    }
    return program;
}

}  // namespace

Program::Program(const char* vertexShader, const char* fragmentShader, int samples)
    : name(link(vertexShader, fragmentShader, samples)) {}

Program::~Program() {
    glDeleteProgram(name);
}

void Program::use() const {
    glUseProgram(name);
}

int Program::location(const char* uniform) const {
    return glGetUniformLocation(name, uniform);
}

void Program::set(const char* uniform, bool value) const {
    glUniform1i(location(uniform), value ? 1 : 0);
}

void Program::set(const char* uniform, double value) const {
    glUniform1f(location(uniform), static_cast<float>(value));
}

void Program::set(const char* uniform, Point value) const {
    glUniform2f(location(uniform), static_cast<float>(value.x), static_cast<float>(value.y));
}

void Program::set(const char* uniform, const Vector& value) const {
    glUniform3f(location(uniform), static_cast<float>(value.x), static_cast<float>(value.y),
                static_cast<float>(value.z));
}

void Program::set(const char* uniform, const Matrix& value) const {
    std::array<float, 16> single{};
    for (std::size_t i = 0; i < single.size(); ++i) {
        single[i] = static_cast<float>(value[i]);
    }
    glUniformMatrix4fv(location(uniform), 1, GL_FALSE, single.data());
}

Mesh::Mesh(const Shape& shape) : count(static_cast<int>(shape.triangles.size())) {
    constexpr int floatsPerVertex = 5;
    std::vector<float> data;
    data.reserve(shape.vertices.size() * floatsPerVertex);
    for (const auto& [position, page] : shape.vertices) {
        for (const double value : {position.x, position.y, position.z, page.x, page.y}) {
            data.push_back(static_cast<float>(value));
        }
    }
    glGenVertexArrays(1, &vertexArray);
    glBindVertexArray(vertexArray);
    glGenBuffers(1, &vertices);
    glBindBuffer(GL_ARRAY_BUFFER, vertices);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(data.size() * sizeof(float)), data.data(),
                 GL_STATIC_DRAW);
    constexpr int stride = floatsPerVertex * sizeof(float);
    glEnableVertexAttribArray(0);
    glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, stride, nullptr);
    glEnableVertexAttribArray(1);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): OpenGL takes the offset as a pointer
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, stride, reinterpret_cast<void*>(3 * sizeof(float)));
    glGenBuffers(1, &triangles);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, triangles);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(shape.triangles.size() * sizeof(std::uint32_t)),
                 shape.triangles.data(), GL_STATIC_DRAW);
}

Mesh::~Mesh() {
    glDeleteBuffers(1, &triangles);
    glDeleteBuffers(1, &vertices);
    glDeleteVertexArrays(1, &vertexArray);
}

void Mesh::draw() const {
    glBindVertexArray(vertexArray);
    glDrawElements(GL_TRIANGLES, count, GL_UNSIGNED_INT, nullptr);
}

OffscreenTarget::OffscreenTarget(host::Size size) : size(size) {
    glGenRenderbuffers(1, &colour);
    glBindRenderbuffer(GL_RENDERBUFFER, colour);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, size.width, size.height);
    glGenRenderbuffers(1, &depth);
    glBindRenderbuffer(GL_RENDERBUFFER, depth);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, size.width, size.height);
    glGenFramebuffers(1, &framebuffer);
    bind();
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colour);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth);
    if (glCheckFramebufferStatus(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
        destroy();
        throw std::runtime_error("OpenGL cannot draw a picture of " + std::to_string(size.width) + " x " +
                                 std::to_string(size.height) + " pixels.");
    }
}

OffscreenTarget::~OffscreenTarget() {
    destroy();
}

void OffscreenTarget::destroy() const {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteRenderbuffers(1, &depth);
    glDeleteRenderbuffers(1, &colour);
}

void OffscreenTarget::bind() const {
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
}

}  // namespace zarvik::player
