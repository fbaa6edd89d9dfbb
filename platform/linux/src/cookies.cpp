#include <winrt/Windows.Web.Http.Filters.h>

#include <algorithm>

#include "cookie_store.h"
#include "implementation.h"

namespace runtime {

namespace {

using winrt::Windows::Foundation::DateTime;
using winrt::Windows::Foundation::IReference;

struct cookie_object : winrt::impl::object {
    std::string name;
    std::string domain;
    std::string path;
    std::string value;
    IReference<DateTime> expires;
    bool http_only = false;
    bool secure = false;
};

/// Stands for the manager and the filter, which have no state of their own.
struct process_object : winrt::impl::object {};

std::shared_ptr<winrt::impl::object> const& process() {
    static auto const& object = *new std::shared_ptr<winrt::impl::object>(std::make_shared<process_object>());
    return object;
}

void require(bool condition, wchar_t const* otherwise) {
    if (!condition) {
        throw winrt::hresult_error(E_INVALIDARG, otherwise);
    }
}

/// Whether the text has no control character and none of the others. The engine drops what has, silently.
bool is_clean(std::string_view text, std::string_view others) {
    return std::ranges::none_of(text, [&](char character) {
        return g_ascii_iscntrl(character) || others.find(character) != std::string_view::npos;
    });
}

/// The domain in the form in which it is stored.
std::string checked_domain(std::string const& text) {
    constexpr wchar_t const* refusal = L"The cookie's domain is not the name of a host.";
    bool const hasSubdomains = text.starts_with('.');
    glib_text const ascii(g_hostname_to_ascii(text.c_str() + (hasSubdomains ? 1 : 0)));
    require(ascii && *ascii != '\0', refusal);
    glib_text const host(g_ascii_strdown(ascii.get(), -1));
    std::string_view const name = host.get();
    require(is_clean(text, " ;,/:@?#\\%[]") && name.find("..") == std::string_view::npos &&
                !name.starts_with('.'),
            refusal);
    require(g_hostname_is_ip_address(host.get()) || !soup_tld_domain_is_public_suffix(host.get()),
            L"The cookie's domain is a public suffix, under which anybody can have a host.");
    return (hasSubdomains ? "." : "") + std::string(name);
}

GDateTime* to_date_time(DateTime const& time) {
    return g_date_time_new_from_unix_utc(winrt::clock::to_time_t(time));
}

soup_cookie_ptr to_soup(cookie_object const& cookie) {
    constexpr int untilSessionEnds = -1;
    soup_cookie_ptr result(soup_cookie_new(cookie.name.c_str(), cookie.value.c_str(), cookie.domain.c_str(),
                                           cookie.path.c_str(), untilSessionEnds));
    if (cookie.expires) {
        std::unique_ptr<GDateTime, release_with<g_date_time_unref>> const time(
            to_date_time(cookie.expires.Value()));
        require(time != nullptr, L"The cookie's expiry is beyond the calendar.");
        soup_cookie_set_expires(result.get(), time.get());
    }
    soup_cookie_set_http_only(result.get(), cookie.http_only);
    soup_cookie_set_secure(result.get(), cookie.secure);
    return result;
}

std::shared_ptr<cookie_object> from_soup(SoupCookie* cookie) {
    auto result = std::make_shared<cookie_object>();
    result->name = soup_cookie_get_name(cookie);
    result->domain = soup_cookie_get_domain(cookie);
    result->path = soup_cookie_get_path(cookie);
    result->value = soup_cookie_get_value(cookie);
    if (GDateTime* const time = soup_cookie_get_expires(cookie)) {
        result->expires = winrt::clock::from_time_t(g_date_time_to_unix(time));
    }
    result->http_only = soup_cookie_get_http_only(cookie);
    result->secure = soup_cookie_get_secure(cookie);
    return result;
}

cookie_object& cookie_of(winrt::Windows::Web::Http::HttpCookie const& cookie) {
    return *implementation_of<cookie_object>(cookie);
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::Web::Http {

namespace {

using runtime::cookie_of;
using runtime::require;

std::shared_ptr<runtime::cookie_object> make_cookie(std::string name, std::string const& domain,
                                                    std::string path) {
    require(!name.empty() && runtime::is_clean(name, ";=") && name.front() != ' ' && name.back() != ' ',
            L"The cookie's name is empty or has a character that no name may have.");
    require((path.empty() || path.starts_with('/')) && runtime::is_clean(path, ";"),
            L"The cookie's path does not begin with a slash or has a character that no path may have.");
    auto cookie = std::make_shared<runtime::cookie_object>();
    cookie->domain = runtime::checked_domain(domain);
    cookie->name = std::move(name);
    cookie->path = path.empty() ? "/" : std::move(path);
    return cookie;
}

}  // namespace

HttpCookie::HttpCookie(param::hstring const& name, param::hstring const& domain, param::hstring const& path)
    : IInspectable(make_cookie(to_string(name.value), to_string(domain.value), to_string(path.value))) {}

hstring HttpCookie::Name() const {
    return to_hstring(cookie_of(*this).name);
}

hstring HttpCookie::Domain() const {
    return to_hstring(cookie_of(*this).domain);
}

hstring HttpCookie::Path() const {
    return to_hstring(cookie_of(*this).path);
}

hstring HttpCookie::Value() const {
    return to_hstring(cookie_of(*this).value);
}

void HttpCookie::Value(param::hstring const& value) const {
    auto text = to_string(value.value);
    require(runtime::is_clean(text, ";"), L"The cookie's value has a character that no value may have.");
    cookie_of(*this).value = std::move(text);
}

Foundation::IReference<Foundation::DateTime> HttpCookie::Expires() const {
    return cookie_of(*this).expires;
}

void HttpCookie::Expires(Foundation::IReference<Foundation::DateTime> const& value) const {
    cookie_of(*this).expires = value;
}

bool HttpCookie::HttpOnly() const {
    return cookie_of(*this).http_only;
}

void HttpCookie::HttpOnly(bool value) const {
    cookie_of(*this).http_only = value;
}

bool HttpCookie::Secure() const {
    return cookie_of(*this).secure;
}

void HttpCookie::Secure(bool value) const {
    cookie_of(*this).secure = value;
}

HttpCookieCollection HttpCookieManager::GetCookies(Foundation::Uri const& uri) const {
    auto const scheme = uri.SchemeName();
    require(scheme == L"http" || scheme == L"https", L"Only http and https have cookies.");
    std::vector<HttpCookie> cookies;
    for (auto const& stored : runtime::cookie_store::matching(to_string(uri.AbsoluteUri()))) {
        cookies.emplace_back(runtime::from_soup(stored.get()));
    }
    return HttpCookieCollection(std::make_shared<impl::vector_view_object<HttpCookie>>(std::move(cookies)));
}

bool HttpCookieManager::SetCookie(HttpCookie const& cookie) const {
    return runtime::cookie_store::add(runtime::to_soup(cookie_of(cookie)));
}

void HttpCookieManager::DeleteCookie(HttpCookie const& cookie) const {
    runtime::cookie_store::remove(runtime::to_soup(cookie_of(cookie)));
}

}  // namespace winrt::Windows::Web::Http

namespace winrt::Windows::Web::Http::Filters {

HttpBaseProtocolFilter::HttpBaseProtocolFilter() : IInspectable(runtime::process()) {}

HttpCookieManager HttpBaseProtocolFilter::CookieManager() const {
    return HttpCookieManager(runtime::process());
}

}  // namespace winrt::Windows::Web::Http::Filters
