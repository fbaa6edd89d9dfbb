// Every test program starts here: what it stores goes to a folder of its own, which is gone afterwards.

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <iostream>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    auto folder = (std::filesystem::temp_directory_path() / "zarvik-test-XXXXXX").string();
    if (!mkdtemp(folder.data())) {
        std::cerr << "No temporary folder can be made\n";
        return 1;
    }
    setenv("XDG_DATA_HOME", (folder + "/data").c_str(), 1);
    setenv("XDG_CACHE_HOME", (folder + "/cache").c_str(), 1);
    const int result = RUN_ALL_TESTS();
    std::error_code ignored;  // the browser's processes may still be writing
    std::filesystem::remove_all(folder, ignored);
    return result;
}
