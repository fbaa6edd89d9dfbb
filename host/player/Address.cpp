#include "Address.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <stdexcept>
#include <string_view>

#include "BundledPages.h"

namespace zarvik::player {

namespace {

bool hasScheme(const std::string& url) {
    const auto colon = url.find(':');
    return colon != std::string::npos && colon > 0 && std::isalpha(static_cast<unsigned char>(url.front())) &&
           std::all_of(
               url.begin(), url.begin() + static_cast<std::ptrdiff_t>(colon), [](unsigned char character) {
                   return std::isalnum(character) || character == '+' || character == '-' || character == '.';
               });
}

std::string fileUrl(const std::filesystem::path& path) {
    constexpr std::string_view hexDigits = "0123456789ABCDEF";
    std::string url = "file://";
    for (const unsigned char byte : std::filesystem::canonical(path).string()) {
        if (std::isalnum(byte) ||
            std::string_view("/-._~").find(static_cast<char>(byte)) != std::string_view::npos) {
            url += static_cast<char>(byte);
        } else {
            url += {'%', hexDigits[byte >> 4], hexDigits[byte & 15]};
        }
    }
    return url;
}

bool isFile(const std::string& path) {
    std::error_code tooLongForAPath;
    return std::filesystem::exists(path, tooLongForAPath);
}

}  // namespace

const char* bundledPage(const std::string& name) {
    return name == "welcome" ? welcomeHtml : name == "guide" ? guideHtml : nullptr;
}

std::string toUrl(const std::string& page) {
    if (isFile(page)) {
        return fileUrl(page);
    }
    if (!hasScheme(page) && !bundledPage(page)) {
        throw std::invalid_argument("'" + page + "' is neither a URL nor a file");
    }
    return page;
}

std::string typedToUrl(const std::string& text) {
    const bool isUrl = hasScheme(text) && (text.find("://") != std::string::npos ||
                                           text.starts_with("about:") || text.starts_with("data:"));
    if (isUrl || bundledPage(text)) {
        return text;
    }
    if (text.starts_with('/') && isFile(text)) {
        return fileUrl(text);
    }
    // A server on this machine seldom has a certificate.
    const bool isLocal = text.starts_with("localhost") || text.starts_with("127.");
    return (isLocal ? "http://" : "https://") + text;
}

}  // namespace zarvik::player
