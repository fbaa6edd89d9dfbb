#pragma once

#include <winrt/Windows.Storage.Streams.h>

namespace winrt::Windows::Security::Cryptography {

enum class BinaryStringEncoding : int32_t { Utf8 = 0 };

/// Texts as bytes, and the other way round. Any thread.
struct CryptographicBuffer {
    CryptographicBuffer() = delete;

    static Storage::Streams::IBuffer ConvertStringToBinary(param::hstring const& value,
                                                           BinaryStringEncoding encoding);

    /// Two lower-case digits a byte.
    static hstring EncodeToHexString(Storage::Streams::IBuffer const& buffer);
};

}  // namespace winrt::Windows::Security::Cryptography
