#include "page_message.h"

#include <charconv>

namespace runtime {

namespace {

/// Takes a number and the blank behind it off a text.
bool take_number(std::string_view& text, uint64_t& number) {
    auto const [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    auto const length = static_cast<size_t>(end - text.data());
    if (error != std::errc() || length == text.size() || text[length] != ' ') {
        return false;
    }
    text.remove_prefix(length + 1);
    return true;
}

}  // namespace

std::optional<page_message> parse_page_message(std::string_view text) {
    page_message message;
    if (!take_number(text, message.document) || !take_number(text, message.object) ||
        !take_number(text, message.method)) {
        return std::nullopt;
    }
    message.argument = text;
    return message;
}

}  // namespace runtime
