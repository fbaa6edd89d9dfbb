#include "zarvik/host/Png.h"

#include <png.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace zarvik::host {

namespace {

[[noreturn]] void fail(const std::filesystem::path& path, const std::string& reason) {
    throw std::runtime_error("The picture " + path.string() + " cannot be written: " + reason);
}

std::vector<std::uint8_t> toStraightRgba(const Image& image) {
    std::vector<std::uint8_t> rgba(image.pixels.size());
    for (std::size_t i = 0; i < rgba.size(); i += 4) {
        const unsigned alpha = image.pixels[i + 3];
        const auto straight = [alpha](unsigned premultiplied) {
            return static_cast<std::uint8_t>(
                alpha == 0 ? 0 : std::min(255U, (premultiplied * 255 + alpha / 2) / alpha));
        };
        rgba[i] = straight(image.pixels[i + 2]);
        rgba[i + 1] = straight(image.pixels[i + 1]);
        rgba[i + 2] = straight(image.pixels[i]);
        rgba[i + 3] = static_cast<std::uint8_t>(alpha);
    }
    return rgba;
}

/// Removes the file at the end, if there still is one.
class TemporaryFile {
  public:
    explicit TemporaryFile(std::filesystem::path path) : path(std::move(path)) {}
    ~TemporaryFile() {
        std::error_code ignored;
        std::filesystem::remove(path, ignored);
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    const std::filesystem::path path;
};

}  // namespace

void writePng(const std::filesystem::path& path, const Image& image) {
    const TemporaryFile temporary(path.string() + "." + std::to_string(getpid()) + ".tmp");

    png_image description{};
    description.version = PNG_IMAGE_VERSION;
    description.width = static_cast<png_uint_32>(image.width);
    description.height = static_cast<png_uint_32>(image.height);
    description.format = PNG_FORMAT_RGBA;
    const std::unique_ptr<png_image, decltype(&png_image_free)> release(&description, png_image_free);

    std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(temporary.path.c_str(), "wb"),
                                                         std::fclose);
    if (!file) {
        fail(path, std::generic_category().message(errno));
    }
    const auto rgba = toStraightRgba(image);
    if (!png_image_write_to_stdio(&description, file.get(), 0, rgba.data(), 0, nullptr)) {
        fail(path, description.message);
    }
    if (std::fclose(file.release()) != 0) {
        fail(path, std::generic_category().message(errno));
    }
    std::error_code error;
    std::filesystem::rename(temporary.path, path, error);
    if (error) {
        fail(path, error.message());
    }
}

}  // namespace zarvik::host
