#include "page_world.h"

#include <dlfcn.h>

#include <filesystem>

#include <winrt/base.h>

namespace runtime {

namespace {

/// The folder of the library, or of the program that it is linked into.
std::filesystem::path own_folder() {
    Dl_info info{};
    std::error_code error;
    std::filesystem::path file;
    if (dladdr(reinterpret_cast<void const*>(&own_folder), &info) && info.dli_fname) {
        file = std::filesystem::canonical(info.dli_fname, error);
    }
    if (file.empty()) {  // a program that was found on the search path
        file = std::filesystem::canonical("/proc/self/exe", error);
    }
    return file.parent_path();
}

}  // namespace

void offer_page_access(WebKitWebContext* context) {
    // A folder of its own, since the engine loads every library of the folder.
    auto const folder = own_folder() / "page_process";
    std::error_code error;
    if (!std::filesystem::exists(folder / "libpage_access.so", error)) {
        throw winrt::hresult_error(
            E_FAIL,
            winrt::to_hstring((folder / "libpage_access.so").string() +
                              " is missing. It belongs to this library: install the folder beside it."));
    }
    webkit_web_context_add_path_to_sandbox(context, folder.c_str(), TRUE);
    webkit_web_context_set_web_extensions_directory(context, folder.c_str());
}

}  // namespace runtime
