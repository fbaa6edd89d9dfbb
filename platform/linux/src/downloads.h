#pragma once

#include <atomic>

namespace runtime {

/// How many seconds a download waits for a server's next byte, or for a connection. Tests shorten it.
inline std::atomic<unsigned> download_patience_s = 60;

}  // namespace runtime
