#include "support/TemporaryFolder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

TemporaryFolder::TemporaryFolder() {
    auto name = (std::filesystem::temp_directory_path() / "zarvik-files-XXXXXX").string();
    if (!mkdtemp(name.data())) {
        throw std::runtime_error("No temporary folder can be made");
    }
    path = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path, ignored);
}

std::string TemporaryFolder::write(const std::string& name, const std::string& content) const {
    const auto written = path / name;
    std::filesystem::create_directories(written.parent_path());
    std::ofstream file(written, std::ios::binary);
    file << content;
    if (!file.flush()) {
        throw std::runtime_error("A file cannot be written: " + written.string());
    }
    return written.string();
}

std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator(stream), {}};
}

std::string fileUrl(const std::string& path) {
    constexpr std::string_view plain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/!$&'()*+,;=:@";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string url = "file://";
    for (const char character : path) {
        if (plain.find(character) != std::string_view::npos) {
            url += character;
        } else {
            const auto byte = static_cast<unsigned char>(character);
            url += {'%', digits[byte / 16], digits[byte % 16]};
        }
    }
    return url;
}
