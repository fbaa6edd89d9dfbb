#pragma once

#include <filesystem>

#include "exports/ZarvikOrvella.h"

namespace zarvik::host {

/// The plug-in's functions by name.
struct PluginExports {
// NOLINTNEXTLINE(bugprone-macro-parentheses): these are types and names
#define ZARVIK_EXPORT(result, name, parameters) result(*name) parameters = nullptr;
#include "exports/ExportTable.inc"
#undef ZARVIK_EXPORT
};

/// The plug-in library in this process. It stays loaded until the process ends: its threads outlive every
/// engine.
class Plugin {
  public:
    /// Throws std::runtime_error if the library cannot be loaded or lacks a function, and names what is
    /// missing.
    explicit Plugin(const std::filesystem::path& library);

    /// The library beside the running program.
    static std::filesystem::path defaultPath();

    const PluginExports exports;
};

}  // namespace zarvik::host
