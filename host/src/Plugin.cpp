#include "zarvik/host/Plugin.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace zarvik::host {

namespace {

PluginExports load(const std::filesystem::path& path) {
    // A name without a slash would be looked up in the system's folders.
    void* library = dlopen(std::filesystem::absolute(path).c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!library) {
        const char* reason = dlerror();  // NOLINT(concurrency-mt-unsafe): glibc keeps it per thread
        throw std::runtime_error(std::string("The plug-in cannot be loaded: ") + reason);
    }
    PluginExports exports;
    std::string missing;
    const auto resolve = [&]<typename Function>(Function*& function, const char* name) {
        function = reinterpret_cast<Function*>(dlsym(library, name));
        if (!function) {
            missing += std::string(missing.empty() ? "" : ", ") + name;
        }
    };
#define ZARVIK_EXPORT(result, name, parameters) resolve(exports.name, #name);
#include "exports/ExportTable.inc"
#undef ZARVIK_EXPORT
    if (!missing.empty()) {
        throw std::runtime_error("The plug-in " + path.string() + " lacks these functions: " + missing);
    }
    return exports;
}

}  // namespace

Plugin::Plugin(const std::filesystem::path& library) : exports(load(library)) {}

std::filesystem::path Plugin::defaultPath() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "libZarvikOrvella.so";
}

}  // namespace zarvik::host
