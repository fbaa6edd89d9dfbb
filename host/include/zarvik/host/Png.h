#pragma once

#include <filesystem>

#include "zarvik/host/Image.h"

namespace zarvik::host {

/// Writes the picture as an RGBA PNG file with straight alpha. The file appears complete or not at all: it is
/// written under a temporary name and then renamed. Throws std::runtime_error with the reason of a failure.
void writePng(const std::filesystem::path& path, const Image& image);

}  // namespace zarvik::host
