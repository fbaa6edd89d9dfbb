#pragma once

#include <cstdint>

/// What stands before the text of each answer to a call, in the file that a page's process writes and the
/// library reads.
struct answer_head {
    uint64_t number;  // of the call
    uint64_t size;    // of the text, in bytes
};
