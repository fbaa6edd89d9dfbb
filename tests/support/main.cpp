// Every test program starts here: what it stores goes to a folder of its own, which is gone afterwards, and
// its pages take no more memory than a small machine has.

#include <gtest/gtest.h>
#include <stdlib.h>

#include "support/TemporaryFolder.h"

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    const TemporaryFolder folder;
    setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    setenv("XDG_CACHE_HOME", (folder / "cache").c_str(), 1);
    setenv("WEBVIEW_MEMORY_LIMIT", "2000", 1);
    return RUN_ALL_TESTS();
}
