#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace runtime {

/// What a document sends to one of its objects. It travels as a text: three numbers and the argument, with
/// blanks in between.
struct page_message {
    uint64_t document = 0;
    uint64_t object = 0;
    uint64_t method = 0;
    std::string_view argument;  // in the text
};

/// Nothing when the text is no such message: our script in the page writes none, but a page's process that
/// was taken over may.
std::optional<page_message> parse_page_message(std::string_view text);

}  // namespace runtime
