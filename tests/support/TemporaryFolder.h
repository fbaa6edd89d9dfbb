#pragma once

#include <filesystem>
#include <string>

/// A folder of a test's own, removed with everything in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    /// The path of what has a name in it.
    std::string operator/(const std::string& name) const { return (path / name).string(); }
    /// Writes a file, makes the folders above it, and gives its path.
    std::string write(const std::string& name, const std::string& content) const;

    std::filesystem::path path;
};

std::string readFile(const std::filesystem::path& file);

/// The "file:" URL of a path.
std::string fileUrl(const std::string& path);
