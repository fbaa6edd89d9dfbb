#include "content_type.h"

#include <gio/gio.h>

#include <algorithm>
#include <string_view>

#include "glib_ptr.h"

namespace runtime {

namespace {

/// What pages are made of. Here the system's database has no say: the engine insists on some of these types.
constexpr std::pair<std::string_view, char const*> known_types[] = {
    {"aac", "audio/aac"},
    {"apng", "image/apng"},
    {"avif", "image/avif"},
    {"bmp", "image/bmp"},
    {"css", "text/css"},
    {"csv", "text/csv"},
    {"flac", "audio/flac"},
    {"gif", "image/gif"},
    {"htm", "text/html"},
    {"html", "text/html"},
    {"ico", "image/x-icon"},
    {"jpeg", "image/jpeg"},
    {"jpg", "image/jpeg"},
    {"js", "text/javascript"},
    {"json", "application/json"},
    {"m4a", "audio/mp4"},
    {"m4v", "video/mp4"},
    {"map", "application/json"},
    {"mjs", "text/javascript"},
    {"mov", "video/quicktime"},
    {"mp3", "audio/mpeg"},
    {"mp4", "video/mp4"},
    {"oga", "audio/ogg"},
    {"ogg", "audio/ogg"},
    {"ogv", "video/ogg"},
    {"opus", "audio/ogg"},
    {"otf", "font/otf"},
    {"pdf", "application/pdf"},
    {"png", "image/png"},
    {"svg", "image/svg+xml"},
    {"ttf", "font/ttf"},
    {"txt", "text/plain"},
    {"vtt", "text/vtt"},
    {"wasm", "application/wasm"},
    {"wav", "audio/wav"},
    {"weba", "audio/webm"},
    {"webm", "video/webm"},
    {"webp", "image/webp"},
    {"woff", "font/woff"},
    {"woff2", "font/woff2"},
    {"xhtml", "application/xhtml+xml"},
    {"xml", "text/xml"},
};

std::string lower_case(std::string_view text) {
    std::string lowered(text);
    std::ranges::transform(lowered, lowered.begin(), g_ascii_tolower);
    return lowered;
}

/// The suffix of the path's last part; empty when it has none.
std::string suffix_of(std::string_view path) {
    auto const name = path.substr(path.find_last_of("/\\") + 1);
    auto const dot = name.rfind('.');
    return dot == std::string_view::npos ? std::string() : lower_case(name.substr(dot + 1));
}

bool looks_like_html(std::span<uint8_t const> head) {
    std::string_view text(reinterpret_cast<char const*>(head.data()), head.size());
    text.remove_prefix(text.starts_with("\xEF\xBB\xBF") ? 3 : 0);
    text.remove_prefix(std::min(text.find_first_not_of(" \t\r\n\f"), text.size()));
    constexpr size_t longest_start = 14;
    auto const start = lower_case(text.substr(0, longest_start));
    return start.starts_with("<!doctype html") || start.starts_with("<html") || start.starts_with("<head") ||
           start.starts_with("<body") || start.starts_with("<script") || start.starts_with("<!--");
}

}  // namespace

std::string content_type(std::string const& path, std::span<uint8_t const> head) {
    auto const suffix = suffix_of(path);
    auto const* const known =
        std::ranges::find(known_types, suffix, [](auto const& entry) { return entry.first; });
    if (known != std::end(known_types)) {
        return known->second;
    }
    bool const has_suffix = !suffix.empty();
    if (!has_suffix && looks_like_html(head)) {
        return "text/html; charset=utf-8";
    }
    glib_text const guessed(
        g_content_type_guess(has_suffix ? path.c_str() : nullptr, head.data(), head.size(), nullptr));
    glib_text const type(g_content_type_get_mime_type(guessed.get()));
    std::string result = type ? type.get() : "application/octet-stream";
    return !has_suffix && result.starts_with("text/") ? result + "; charset=utf-8" : result;
}

}  // namespace runtime
