#pragma once

#include <winrt/Windows.Storage.Streams.h>

namespace winrt::Windows::Web {

/// Why a load failed. An HTTP status stands for itself.
enum class WebErrorStatus : int32_t {
    Unknown = 0,
    CertificateCommonNameIsIncorrect = 1,
    CertificateExpired = 2,
    CertificateContainsErrors = 3,
    CertificateRevoked = 4,
    CertificateIsInvalid = 5,
    ServerUnreachable = 6,
    Timeout = 7,
    ErrorHttpInvalidServerResponse = 8,
    ConnectionAborted = 9,
    ConnectionReset = 10,
    Disconnected = 11,
    HttpToHttpsOnRedirection = 12,
    HttpsToHttpOnRedirection = 13,
    CannotConnect = 14,
    HostNameNotResolved = 15,
    OperationCanceled = 16,
    RedirectFailed = 17,
    UnexpectedStatusCode = 18,
    UnexpectedRedirection = 19,
    UnexpectedClientError = 20,
    UnexpectedServerError = 21,
};

/// Gives the content behind local addresses. Applications implement it, with `implements` and `make`.
struct IUriToStreamResolver : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(IUriToStreamResolver, IInspectable)

    /// The content for one request. Called on pool threads, for several requests at once; an operation that
    /// fails makes the request fail.
    Foundation::IAsyncOperation<Storage::Streams::IInputStream> UriToStreamAsync(
        Foundation::Uri const& uri) const;
};

}  // namespace winrt::Windows::Web

template <>
struct winrt::impl::abi<winrt::Windows::Web::IUriToStreamResolver> : object {
    virtual Windows::Foundation::IAsyncOperation<Windows::Storage::Streams::IInputStream> uri_to_stream(
        Windows::Foundation::Uri const& uri) = 0;
};

template <typename Derived>
struct winrt::impl::produce<Derived, winrt::Windows::Web::IUriToStreamResolver>
    : abi<Windows::Web::IUriToStreamResolver> {
    Windows::Foundation::IAsyncOperation<Windows::Storage::Streams::IInputStream> uri_to_stream(
        Windows::Foundation::Uri const& uri) final {
        return static_cast<Derived&>(*this).UriToStreamAsync(uri);
    }
};
