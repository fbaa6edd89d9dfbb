#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// The rules of navigation that need no control.

/// True if the first ".pdf" of the URL stands exactly at its end. Text of three characters counts as well.
bool isPdfUrl(std::string_view url);

/// Request headers in the order given, and the lines that are none.
struct HeaderLines {
    std::vector<std::pair<std::string, std::string>> headers;
    std::vector<std::string> invalidLines;
};

/// Splits a text with one header per line. A header is a line with exactly one ": "; nothing is trimmed.
HeaderLines splitHeaders(std::string_view text);

/// The page message that tells of a new URL. The URL goes in as it is, without JSON escapes.
std::string urlChangedMessage(std::string_view url);
