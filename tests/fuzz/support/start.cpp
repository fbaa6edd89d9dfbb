// Every target starts here: what it stores goes to a folder of its own, which is gone afterwards, and
// libFuzzer is told how to get along with a browser engine.

#include <stdlib.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <vector>

namespace {

std::filesystem::path folder;

void removeFolder() {
    std::error_code ignored;  // the browser's processes may still be writing
    std::filesystem::remove_all(folder, ignored);
}

/// In front of the options given, which so have the last word.
const std::vector<const char*> options{// The engine's collector stops threads with these.
                                       "-handle_usr1=0", "-handle_usr2=0",
                                       // What the engine's threads keep is no leak of the input's. The
                                       // program as a whole is checked when it ends.
                                       "-detect_leaks=0",
                                       // Room for the engine and the sanitizer.
                                       "-rss_limit_mb=6144", "-malloc_limit_mb=4096",
                                       // Seconds: what takes longer hangs.
                                       "-timeout=120"};

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    auto name = (std::filesystem::temp_directory_path() / "zarvik-fuzz-XXXXXX").string();
    if (!mkdtemp(name.data())) {
        std::cerr << "No temporary folder can be made\n";
        std::exit(1);
    }
    folder = name;
    std::atexit(removeFolder);
    setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    setenv("XDG_CACHE_HOME", (folder / "cache").c_str(), 1);

    static std::vector<char*> arguments(*argv, *argv + *argc);
    for (const char* option : options) {
        arguments.insert(arguments.begin() + 1, const_cast<char*>(option));
    }
    *argc = static_cast<int>(arguments.size());
    arguments.push_back(nullptr);
    *argv = arguments.data();
    return 0;
}
