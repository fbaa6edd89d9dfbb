#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace runtime {

/// How many of a content's first bytes are enough to tell its type.
inline constexpr size_t content_type_evidence = 1024;

/// The content type that a browser should take something for: after the suffix of its path, and after its
/// first bytes where that says nothing. Text without a suffix is what programs make: UTF-8.
std::string content_type(std::string const& path, std::span<uint8_t const> head);

}  // namespace runtime
