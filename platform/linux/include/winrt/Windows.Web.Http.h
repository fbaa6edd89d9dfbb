#pragma once

#include <winrt/Windows.Foundation.Collections.h>
#include <winrt/Windows.Web.Http.Headers.h>
#include <winrt/impl/reference.h>
#include <winrt/impl/time.h>

namespace winrt::Windows::Web::Http {

struct HttpMethod : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(HttpMethod, IInspectable)

    static HttpMethod Get();
};

/// A request that a web view can be navigated with. One thread at a time.
struct HttpRequestMessage : Foundation::IInspectable {
    HttpRequestMessage(HttpMethod const& method, Foundation::Uri const& uri);
    WINRT_LINUX_HANDLE(HttpRequestMessage, IInspectable)

    Headers::HttpRequestHeaderCollection Headers() const;
};

/// A cookie as a value: it is stored only by the cookie manager. One thread at a time.
struct HttpCookie : Foundation::IInspectable {
    /// E_INVALIDARG for a name, domain or path that no cookie can have. A domain with a leading dot stands
    /// for its subdomains too; an empty path for "/".
    HttpCookie(param::hstring const& name, param::hstring const& domain, param::hstring const& path);
    WINRT_LINUX_HANDLE(HttpCookie, IInspectable)

    hstring Name() const;
    hstring Domain() const;
    hstring Path() const;

    hstring Value() const;
    /// E_INVALIDARG for a value that no cookie can have.
    void Value(param::hstring const& value) const;

    /// When the cookie ends; without a time it ends with the session.
    Foundation::IReference<Foundation::DateTime> Expires() const;
    void Expires(Foundation::IReference<Foundation::DateTime> const& value) const;

    bool HttpOnly() const;
    void HttpOnly(bool value) const;
    bool Secure() const;
    void Secure(bool value) const;
};

struct HttpCookieCollection : Foundation::Collections::IVectorView<HttpCookie> {
    WINRT_LINUX_HANDLE(HttpCookieCollection, IVectorView<HttpCookie>)
};

/// The cookies of all web views of the process. The calls answer at once from any thread, also while pages
/// hang; RPC_E_TIMEOUT when they cannot.
struct HttpCookieManager : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(HttpCookieManager, IInspectable)

    /// The cookies that a request to the URI would carry; E_INVALIDARG for anything but http and https.
    HttpCookieCollection GetCookies(Foundation::Uri const& uri) const;

    /// Stores a cookie, and tells whether it replaced one with the same name, domain and path. One that has
    /// expired already only removes that other one.
    bool SetCookie(HttpCookie const& cookie) const;

    /// Removes the cookie with the same name, domain and path.
    void DeleteCookie(HttpCookie const& cookie) const;
};

}  // namespace winrt::Windows::Web::Http
