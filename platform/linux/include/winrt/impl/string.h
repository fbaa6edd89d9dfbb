#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace winrt {

/// An immutable text of wide characters. As with the platform's own type an element is a `wchar_t`, which
/// holds a whole code point here (UTF-32): convert at the edges, never index by code unit.
class hstring {
  public:
    using value_type = wchar_t;
    using size_type = uint32_t;
    using const_iterator = std::wstring::const_iterator;

    hstring() noexcept = default;
    hstring(std::nullptr_t) = delete;
    hstring(wchar_t const* text) : characters(text ? text : L"") {}
    hstring(wchar_t const* text, size_type size) : characters(text, size) {}
    explicit hstring(std::wstring_view text) : characters(text) {}

    operator std::wstring_view() const noexcept { return characters; }
    wchar_t const* c_str() const noexcept { return characters.c_str(); }
    wchar_t const* data() const noexcept { return characters.data(); }
    size_type size() const noexcept { return static_cast<size_type>(characters.size()); }
    bool empty() const noexcept { return characters.empty(); }
    wchar_t front() const noexcept { return characters.front(); }
    const_iterator begin() const noexcept { return characters.begin(); }
    const_iterator end() const noexcept { return characters.end(); }

    friend bool operator==(hstring const& left, hstring const& right) noexcept = default;
    friend bool operator==(hstring const& left, wchar_t const* right) noexcept {
        return left.characters == right;
    }
    friend hstring operator+(wchar_t const* left, hstring const& right) {
        return hstring(left + right.characters);
    }
    friend hstring operator+(hstring const& left, wchar_t const* right) {
        return hstring(left.characters + right);
    }
    friend auto operator<=>(hstring const& left, hstring const& right) noexcept {
        return left.characters <=> right.characters;
    }

  private:
    std::wstring characters;
};

namespace param {
/// What a function takes where a text is wanted: the conversions that are allowed into a call, none out of
/// it.
struct hstring {
    hstring() = default;
    hstring(std::nullptr_t) = delete;
    hstring(winrt::hstring text) : value(std::move(text)) {}
    hstring(wchar_t const* text) : value(text) {}
    hstring(std::wstring const& text) : value(std::wstring_view(text)) {}
    hstring(std::wstring_view text) : value(text) {}

    operator winrt::hstring const&() const noexcept { return value; }

    winrt::hstring value;
};
}  // namespace param

/// UTF-8 in, text out. Malformed sequences become U+FFFD.
hstring to_hstring(std::string_view text);

/// Text in, UTF-8 out. What is no Unicode scalar value (a lone surrogate) becomes U+FFFD.
std::string to_string(std::wstring_view text);

}  // namespace winrt
