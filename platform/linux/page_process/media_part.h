#pragma once

#include <glib.h>

#include <cstdint>

// How the page process asks the library for local content that a media element plays: piece by piece, each
// piece with a message of its own.

inline constexpr char const* media_part_message = "local-media";
/// The address, and the first byte that is wanted.
inline constexpr char const* media_part_request = "(st)";
/// The length of the whole content, and the bytes from that place on: some, or none at the end.
inline constexpr char const* media_part_answer = "(t@ay)";
/// At most so many bytes are answered.
inline constexpr gsize media_part_size = gsize{64} * 1024;
