#include <winrt/base.h>

namespace winrt {

namespace {

constexpr char32_t replacement = 0xFFFD;

bool is_scalar_value(char32_t code) {
    return code < 0xD800 || (code > 0xDFFF && code <= 0x10FFFF);
}

/// Decodes the sequence at `position` and moves past it; a malformed one yields U+FFFD and loses one byte.
char32_t decode(std::string_view text, size_t& position) {
    auto const first = static_cast<unsigned char>(text[position++]);
    if (first < 0x80) {
        return first;
    }
    int const following = first >= 0xF0 ? 3 : first >= 0xE0 ? 2 : 1;
    if (first < 0xC2 || first > 0xF4) {
        return replacement;
    }
    char32_t code = first & (0x3F >> following);
    for (int i = 0; i < following; ++i) {
        auto const index = position + static_cast<size_t>(i);
        auto const next = index < text.size() ? static_cast<unsigned char>(text[index]) : 0;
        if ((next & 0xC0) != 0x80) {
            return replacement;
        }
        code = code << 6 | (next & 0x3F);
    }
    constexpr char32_t smallest[] = {0, 0x80, 0x800, 0x10000};
    if (code < smallest[following] || !is_scalar_value(code)) {
        return replacement;
    }
    position += static_cast<size_t>(following);
    return code;
}

void encode(char32_t code, std::string& text) {
    auto const append = [&](char32_t byte) { text.push_back(static_cast<char>(byte)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0 | code >> 6);
        append(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        append(0xE0 | code >> 12);
        append(0x80 | (code >> 6 & 0x3F));
        append(0x80 | (code & 0x3F));
    } else {
        append(0xF0 | code >> 18);
        append(0x80 | (code >> 12 & 0x3F));
        append(0x80 | (code >> 6 & 0x3F));
        append(0x80 | (code & 0x3F));
    }
}

}  // namespace

hstring to_hstring(std::string_view text) {
    std::wstring result;
    result.reserve(text.size());
    for (size_t position = 0; position < text.size();) {
        result.push_back(static_cast<wchar_t>(decode(text, position)));
    }
    return hstring(result);
}

std::string to_string(std::wstring_view text) {
    std::string result;
    result.reserve(text.size());
    for (wchar_t const character : text) {
        auto const code = static_cast<char32_t>(character);
        encode(is_scalar_value(code) ? code : replacement, result);
    }
    return result;
}

}  // namespace winrt
