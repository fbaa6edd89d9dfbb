#pragma once

#include <sys/types.h>

#include <vector>

/// The browser's processes that belong to this one: of pages, of the network, and what keeps them apart.
std::vector<pid_t> browserProcesses();

/// Those that run pages.
std::vector<pid_t> pageProcesses();
