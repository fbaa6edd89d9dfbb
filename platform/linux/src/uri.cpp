#include <winrt/Windows.Foundation.h>

#include <glib.h>

#include <algorithm>
#include <ranges>
#include <span>

#include "glib_ptr.h"
#include "implementation.h"

namespace runtime {
namespace {

using guri_ptr = std::unique_ptr<GUri, release_with<g_uri_unref>>;

/// A part of a text.
struct part {
    size_t begin = 0;
    size_t length = 0;
};

/// A parsed URI. Immutable.
struct uri_object : winrt::impl::object {
    winrt::hstring raw;
    std::string absolute;
    part scheme;
    part host;
    part path;
    part query;

    winrt::hstring text_of(part const& wanted) const {
        return winrt::to_hstring(std::string_view(absolute).substr(wanted.begin, wanted.length));
    }
    /// Appends to the absolute URI and returns where the text came to stand.
    part append(std::string_view text) {
        part const added{absolute.size(), text.size()};
        absolute += text;
        return added;
    }
};

// What browsers do not let stand raw in the parts of a URI, besides controls, blanks and what is not ASCII.
constexpr std::string_view illegalInPath = "\"<>^`{}";
constexpr std::string_view illegalInQuery = "\"<>";
constexpr std::string_view illegalInFragment = "\"<>`";
constexpr std::string_view illegalInOpaque;
constexpr std::string_view illegalInHost = "#/<>?@[\\]^|%";

[[noreturn]] void refuse(wchar_t const* reason) {
    throw winrt::hresult_error(E_INVALIDARG, reason);
}

bool is_blank_or_control(char character) {
    return static_cast<unsigned char>(character) <= ' ' || character == 0x7F;
}

bool needs_encoding(char character, std::string_view illegal) {
    return is_blank_or_control(character) || static_cast<unsigned char>(character) > 0x7F ||
           illegal.find(character) != std::string_view::npos;
}

std::string percent_encode(std::string_view text, std::string_view illegal) {
    std::string encoded;
    encoded.reserve(text.size());
    for (char const character : text) {
        if (needs_encoding(character, illegal)) {
            constexpr char digits[] = "0123456789ABCDEF";
            auto const byte = static_cast<unsigned char>(character);
            encoded += {'%', digits[byte >> 4], digits[byte & 0xF]};
        } else {
            encoded += character;
        }
    }
    return encoded;
}

std::string lower_case(std::string_view text) {
    std::string lowered(text);
    std::ranges::transform(lowered, lowered.begin(), g_ascii_tolower);
    return lowered;
}

/// Takes away what browsers take away before they parse: blanks at the ends, line breaks and tabs anywhere.
std::string strip(std::string text) {
    std::erase_if(text,
                  [](char character) { return character == '\t' || character == '\n' || character == '\r'; });
    text.erase(std::ranges::find_if_not(text | std::views::reverse, is_blank_or_control).base(), text.end());
    text.erase(text.begin(), std::ranges::find_if_not(text, is_blank_or_control));
    return text;
}

/// The scheme in lower case; empty when the text has none.
std::string scheme_of(std::string_view text) {
    auto const length = text.find(':');
    auto const scheme = text.substr(0, length);
    auto const allowed = [](char character) {
        return g_ascii_isalnum(character) || character == '+' || character == '-' || character == '.';
    };
    bool const valid = length != std::string_view::npos && !scheme.empty() &&
                       g_ascii_isalpha(scheme.front()) && std::ranges::all_of(scheme, allowed);
    return valid ? lower_case(scheme) : std::string();
}

/// The default port of a scheme whose URIs name a host of the network; -1 for other schemes.
int default_port(std::string_view scheme) {
    if (scheme == "http" || scheme == "ws") {
        return 80;
    }
    if (scheme == "https" || scheme == "wss") {
        return 443;
    }
    return scheme == "ftp" ? 21 : -1;
}

/// Whether what follows the scheme is a text without a structure, whatever it looks like. It may be megabytes
/// long.
bool is_opaque(std::string_view scheme, std::string_view rest) {
    return !rest.starts_with("//") || scheme == "data" || scheme == "javascript" || scheme == "about" ||
           scheme == "blob";
}

/// Browsers take a backslash for a slash where paths have a meaning to them.
void straighten_slashes(std::string& rest) {
    auto const pathEnd =
        rest.begin() + static_cast<std::ptrdiff_t>(std::min(rest.find_first_of("?#"), rest.size()));
    std::replace(rest.begin(), pathEnd, '\\', '/');
}

/// Gives a `file:` URI without a host the empty one: `file:/x` and `file:C:/x` lack it, and in `file://C:/x`
/// the drive stands in its place.
void complete_file_authority(std::string& rest) {
    bool const hasDrive = rest.size() > 3 && rest.starts_with("//") && g_ascii_isalpha(rest[2]) &&
                          rest[3] == ':' && (rest.size() == 4 || rest[4] == '/');
    if (hasDrive) {
        rest.insert(0, "/");
    } else if (!rest.starts_with("//")) {
        rest.insert(0, rest.starts_with('/') ? "//" : "///");
    }
}

/// Stands for a semicolon of the host while a URI is parsed: to the parser it would begin the path.
constexpr char semicolon = '\x01';

guri_ptr parse_hierarchical(std::string const& scheme, std::string rest) {
    size_t const authority_end = std::min(rest.find_first_of("/?#", 2), rest.size());
    size_t const at = rest.substr(0, authority_end).rfind('@');
    std::span const host(rest.begin() + static_cast<std::ptrdiff_t>(at == std::string::npos ? 0 : at),
                         rest.begin() + static_cast<std::ptrdiff_t>(authority_end));
    if (std::ranges::find(host, semicolon) != host.end()) {
        refuse(L"The URI's host has a character that no host may have.");
    }
    std::ranges::replace(host, ';', semicolon);
    std::string const text = scheme + ':' + rest;
    if (text.find('\0') != std::string_view::npos) {
        refuse(L"The URI has a NUL character.");
    }
    constexpr auto flags = static_cast<GUriFlags>(G_URI_FLAGS_PARSE_RELAXED | G_URI_FLAGS_ENCODED);
    // Resolving against a base, which does not count beside an absolute URI, is what removes dot segments.
    static GUri* const base = g_uri_parse("http://base/", flags, nullptr);
    glib_error error;
    guri_ptr uri(g_uri_parse_relative(base, text.c_str(), flags, error.put()));
    if (!uri) {
        throw winrt::hresult_error(E_INVALIDARG, winrt::to_hstring(error.message()));
    }
    return uri;
}

std::string host_of(GUri* uri) {
    char const* const parsed = g_uri_get_host(uri);
    std::string host = lower_case(parsed ? parsed : "");
    std::ranges::replace(host, semicolon, ';');
    if (host.find(':') != std::string::npos && host.find('%') == std::string::npos) {
        return '[' + host + ']';  // an IPv6 address, which the parser has checked
    }
    return percent_encode(host, illegalInHost);
}

/// A URI with an authority: `scheme://host/path`.
void set_hierarchical(uri_object& object, std::string const& scheme, std::string const& rest) {
    guri_ptr const uri = parse_hierarchical(scheme, rest);
    int const defaultPort = default_port(scheme);
    bool const isNetwork = defaultPort != -1;
    std::string const host = host_of(uri.get());
    if (isNetwork && host.empty()) {
        refuse(L"The URI has no host.");
    }
    if (isNetwork && host.find('%') != std::string::npos) {
        refuse(L"The URI's host has a character that no host may have.");
    }
    object.append("://");
    if (char const* const userinfo = g_uri_get_userinfo(uri.get())) {
        object.append(percent_encode(userinfo, illegalInPath));
        object.append("@");
    }
    object.host = object.append(host);
    if (int const port = g_uri_get_port(uri.get()); port != -1 && port != defaultPort) {
        object.append(':' + std::to_string(port));
    }
    std::string const path = percent_encode(g_uri_get_path(uri.get()), illegalInPath);
    object.path = object.append(isNetwork && path.empty() ? "/" : path);
    if (char const* const query = g_uri_get_query(uri.get())) {
        object.query = object.append('?' + percent_encode(query, illegalInQuery));
    }
    if (char const* const fragment = g_uri_get_fragment(uri.get())) {
        object.append('#' + percent_encode(fragment, illegalInFragment));
    }
}

void set_opaque(uri_object& object, std::string_view rest) {
    object.append(":");
    part const whole = object.append(percent_encode(rest, illegalInOpaque));
    std::string_view const text = std::string_view(object.absolute).substr(whole.begin);
    size_t const fragment = std::min(text.find('#'), text.size());
    size_t const query = std::min(text.find('?'), fragment);
    object.path = {whole.begin, query};
    object.query = {whole.begin + query, fragment - query};
}

std::shared_ptr<uri_object> parse(winrt::hstring const& raw) {
    auto object = std::make_shared<uri_object>();
    object->raw = raw;
    std::string const text = strip(winrt::to_string(raw));
    std::string const scheme = scheme_of(text);
    if (scheme.empty()) {
        refuse(text.empty() ? L"The URI is empty." : L"The URI is not absolute: it has no scheme.");
    }
    std::string rest = text.substr(scheme.size() + 1);
    bool const isNetwork = default_port(scheme) != -1;
    if (isNetwork || scheme == "file") {
        straighten_slashes(rest);
    }
    if (scheme == "file") {
        complete_file_authority(rest);
    }
    if (isNetwork && !rest.starts_with("//")) {
        refuse(L"The URI has no host.");
    }
    object->scheme = object->append(scheme);
    if (is_opaque(scheme, rest)) {
        set_opaque(*object, rest);
    } else {
        set_hierarchical(*object, scheme, rest);
    }
    return object;
}

uri_object const& uri_of(winrt::Windows::Foundation::Uri const& uri) {
    return *implementation_of<uri_object>(uri);
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::Foundation {

using runtime::uri_of;

Uri::Uri(param::hstring const& uri) : IInspectable(runtime::parse(uri)) {}

hstring Uri::AbsoluteUri() const {
    return to_hstring(uri_of(*this).absolute);
}

hstring Uri::RawUri() const {
    return uri_of(*this).raw;
}

hstring Uri::SchemeName() const {
    return uri_of(*this).text_of(uri_of(*this).scheme);
}

hstring Uri::Host() const {
    return uri_of(*this).text_of(uri_of(*this).host);
}

hstring Uri::Path() const {
    return uri_of(*this).text_of(uri_of(*this).path);
}

hstring Uri::Query() const {
    return uri_of(*this).text_of(uri_of(*this).query);
}

}  // namespace winrt::Windows::Foundation
