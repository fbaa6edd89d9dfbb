#pragma once

#include <unknwn.h>

#include <winrt/impl/string.h>

namespace winrt {

/// A platform result code.
struct hresult {
    int32_t value{};

    constexpr hresult() noexcept = default;
    constexpr hresult(int32_t code) noexcept : value(code) {}
    constexpr operator int32_t() const noexcept { return value; }
};

/// A failed platform call: its code and a text for people.
class hresult_error {
  public:
    explicit hresult_error(hresult code);
    hresult_error(hresult code, param::hstring const& message) : failure(code), text(message) {}

    hresult code() const noexcept { return failure; }
    hstring message() const { return text; }

  private:
    hresult failure;
    hstring text;
};

class hresult_invalid_argument : public hresult_error {
  public:
    explicit hresult_invalid_argument(param::hstring const& message) : hresult_error(E_INVALIDARG, message) {}
};

inline void check_hresult(hresult result) {
    if (result < 0) {
        throw hresult_error(result);
    }
}

}  // namespace winrt
