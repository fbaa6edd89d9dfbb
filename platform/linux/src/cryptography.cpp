#include <glib.h>
#include <winrt/Windows.Security.Cryptography.Core.h>
#include <winrt/Windows.Security.Cryptography.h>

#include <algorithm>
#include <span>

#include "buffer.h"
#include "glib_ptr.h"
#include "implementation.h"

namespace runtime {
namespace {

struct hash_provider : winrt::impl::object {};

winrt::Windows::Storage::Streams::IBuffer make_buffer(std::span<uint8_t const> bytes) {
    std::shared_ptr<uint8_t[]> const memory(new uint8_t[bytes.size()]);
    std::ranges::copy(bytes, memory.get());
    return winrt::Windows::Storage::Streams::IBuffer(std::make_shared<buffer_object>(
        std::shared_ptr<uint8_t>(memory, memory.get()), static_cast<uint32_t>(bytes.size())));
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::Security::Cryptography {

Storage::Streams::IBuffer CryptographicBuffer::ConvertStringToBinary(param::hstring const& value,
                                                                     BinaryStringEncoding) {
    auto const text = to_string(value.value);
    return runtime::make_buffer({reinterpret_cast<uint8_t const*>(text.data()), text.size()});
}

hstring CryptographicBuffer::EncodeToHexString(Storage::Streams::IBuffer const& buffer) {
    std::wstring digits;
    for (uint8_t const byte : std::span(buffer.data(), buffer.Length())) {
        digits += L"0123456789abcdef"[byte >> 4];
        digits += L"0123456789abcdef"[byte & 0xF];
    }
    return hstring(digits);
}

}  // namespace winrt::Windows::Security::Cryptography

namespace winrt::Windows::Security::Cryptography::Core {

hstring HashAlgorithmNames::Md5() {
    return L"MD5";
}

HashAlgorithmProvider HashAlgorithmProvider::OpenAlgorithm(param::hstring const& algorithm) {
    if (algorithm.value != HashAlgorithmNames::Md5()) {
        throw hresult_error(E_INVALIDARG, L"There is no such digest.");
    }
    return HashAlgorithmProvider(std::make_shared<runtime::hash_provider>());
}

Storage::Streams::IBuffer HashAlgorithmProvider::HashData(Storage::Streams::IBuffer const& data) const {
    runtime::implementation_of<runtime::hash_provider>(*this);
    std::unique_ptr<GChecksum, runtime::release_with<g_checksum_free>> const checksum(
        g_checksum_new(G_CHECKSUM_MD5));
    g_checksum_update(checksum.get(), data.data(), data.Length());
    constexpr gsize digest_size = 16;
    uint8_t digest[digest_size];
    gsize size = digest_size;
    g_checksum_get_digest(checksum.get(), digest, &size);
    return runtime::make_buffer(digest);
}

}  // namespace winrt::Windows::Security::Cryptography::Core
