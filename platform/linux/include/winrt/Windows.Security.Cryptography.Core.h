#pragma once

#include <winrt/Windows.Storage.Streams.h>

namespace winrt::Windows::Security::Cryptography::Core {

struct HashAlgorithmNames {
    HashAlgorithmNames() = delete;

    static hstring Md5();
};

/// A way to digest bytes. Any thread.
struct HashAlgorithmProvider : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(HashAlgorithmProvider, IInspectable)

    /// E_INVALIDARG for an algorithm that is none of HashAlgorithmNames.
    static HashAlgorithmProvider OpenAlgorithm(param::hstring const& algorithm);

    Storage::Streams::IBuffer HashData(Storage::Streams::IBuffer const& data) const;
};

}  // namespace winrt::Windows::Security::Cryptography::Core
