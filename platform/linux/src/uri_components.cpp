// Percent-encoded texts and forms, as they are parts of URIs.

#include <glib.h>
#include <winrt/Windows.Foundation.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "implementation.h"

namespace runtime {
namespace {

struct form_object : winrt::impl::object {
    std::vector<std::pair<winrt::hstring, winrt::hstring>> fields;
};

std::string unescape(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size() && g_ascii_isxdigit(text[i + 1]) &&
            g_ascii_isxdigit(text[i + 2])) {
            result +=
                static_cast<char>(g_ascii_xdigit_value(text[i + 1]) << 4 | g_ascii_xdigit_value(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

/// A name or value of a form, where blanks are written as "+".
winrt::hstring decode_field(std::string_view text) {
    std::string plain(text);
    std::ranges::replace(plain, '+', ' ');
    return winrt::to_hstring(unescape(plain));
}

std::shared_ptr<form_object> parse_form(std::string_view query) {
    auto form = std::make_shared<form_object>();
    query.remove_prefix(query.starts_with('?') ? 1 : 0);
    while (!query.empty()) {
        auto const field = query.substr(0, query.find('&'));
        query.remove_prefix(std::min(field.size() + 1, query.size()));
        auto const name = field.substr(0, field.find('='));
        auto const value = field.substr(std::min(name.size() + 1, field.size()));
        form->fields.emplace_back(decode_field(name), decode_field(value));
    }
    return form;
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::Foundation {

hstring Uri::UnescapeComponent(param::hstring const& toUnescape) {
    return to_hstring(runtime::unescape(to_string(toUnescape.value)));
}

hstring Uri::EscapeComponent(param::hstring const& toEscape) {
    std::wstring escaped;
    for (char const character : to_string(toEscape.value)) {
        if (g_ascii_isalnum(character) ||
            std::string_view("-._~").find(character) != std::string_view::npos) {
            escaped += static_cast<wchar_t>(character);
        } else {
            auto const byte = static_cast<unsigned char>(character);
            escaped += {L'%', L"0123456789ABCDEF"[byte >> 4], L"0123456789ABCDEF"[byte & 0xF]};
        }
    }
    return hstring(escaped);
}

WwwFormUrlDecoder Uri::QueryParsed() const {
    return WwwFormUrlDecoder(runtime::parse_form(to_string(Query())));
}

hstring WwwFormUrlDecoder::GetFirstValueByName(param::hstring const& name) const {
    auto const form = runtime::implementation_of<runtime::form_object>(*this);
    auto const found =
        std::ranges::find(form->fields, name.value, [](auto const& field) { return field.first; });
    if (found == form->fields.end()) {
        throw hresult_error(E_INVALIDARG, L"The query has no value of that name.");
    }
    return found->second;
}

}  // namespace winrt::Windows::Foundation
