#include "support/Memory.h"

#include <malloc.h>

#include <fstream>
#include <string>

long residentMemory() {
    malloc_trim(0);
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("VmRSS:")) {
            return std::stol(line.substr(6)) * 1024;
        }
    }
    return 0;
}
