#include "load_errors.h"

#include <libsoup/soup.h>
#include <webkit2/webkit2.h>

namespace runtime {

using winrt::Windows::Web::WebErrorStatus;

namespace {

struct mapping {
    GQuark (*domain)();
    int code;
    WebErrorStatus status;
};

constexpr mapping mappings[] = {
    {webkit_network_error_quark, WEBKIT_NETWORK_ERROR_CANCELLED, WebErrorStatus::OperationCanceled},
    {webkit_policy_error_quark, WEBKIT_POLICY_ERROR_FRAME_LOAD_INTERRUPTED_BY_POLICY_CHANGE,
     WebErrorStatus::OperationCanceled},
    {g_io_error_quark, G_IO_ERROR_CONNECTION_REFUSED, WebErrorStatus::CannotConnect},
    {g_io_error_quark, G_IO_ERROR_HOST_UNREACHABLE, WebErrorStatus::ServerUnreachable},
    {g_io_error_quark, G_IO_ERROR_NETWORK_UNREACHABLE, WebErrorStatus::ServerUnreachable},
    {g_io_error_quark, G_IO_ERROR_HOST_NOT_FOUND, WebErrorStatus::HostNameNotResolved},
    {g_io_error_quark, G_IO_ERROR_TIMED_OUT, WebErrorStatus::Timeout},
    {g_io_error_quark, G_IO_ERROR_CONNECTION_CLOSED, WebErrorStatus::ConnectionReset},
    {g_io_error_quark, G_IO_ERROR_PARTIAL_INPUT, WebErrorStatus::ConnectionAborted},
    {g_io_error_quark, G_IO_ERROR_INVALID_DATA, WebErrorStatus::ErrorHttpInvalidServerResponse},
    {soup_session_error_quark, SOUP_SESSION_ERROR_PARSING, WebErrorStatus::ErrorHttpInvalidServerResponse},
    {soup_session_error_quark, SOUP_SESSION_ERROR_ENCODING, WebErrorStatus::ErrorHttpInvalidServerResponse},
    {soup_session_error_quark, SOUP_SESSION_ERROR_TOO_MANY_REDIRECTS, WebErrorStatus::RedirectFailed},
    {soup_session_error_quark, SOUP_SESSION_ERROR_REDIRECT_NO_LOCATION, WebErrorStatus::RedirectFailed},
    {soup_session_error_quark, SOUP_SESSION_ERROR_REDIRECT_BAD_URI, WebErrorStatus::RedirectFailed},
    {g_tls_error_quark, G_TLS_ERROR_MISC, WebErrorStatus::ErrorHttpInvalidServerResponse},
    {g_tls_error_quark, G_TLS_ERROR_NOT_TLS, WebErrorStatus::ErrorHttpInvalidServerResponse},
    {g_tls_error_quark, G_TLS_ERROR_BAD_CERTIFICATE, WebErrorStatus::CertificateIsInvalid},
};

}  // namespace

WebErrorStatus error_status(GError const& error) {
    if (error.domain == platform_error_quark()) {
        return static_cast<WebErrorStatus>(error.code);
    }
    for (auto const& [domain, code, status] : mappings) {
        if (g_error_matches(&error, domain(), code)) {
            return status;
        }
    }
    return error.domain == G_RESOLVER_ERROR ? WebErrorStatus::HostNameNotResolved : WebErrorStatus::Unknown;
}

WebErrorStatus error_status(GTlsCertificateFlags certificate_errors) {
    struct {
        GTlsCertificateFlags flag;
        WebErrorStatus status;
    } constexpr mappings[] = {
        {G_TLS_CERTIFICATE_REVOKED, WebErrorStatus::CertificateRevoked},
        {G_TLS_CERTIFICATE_EXPIRED, WebErrorStatus::CertificateExpired},
        {G_TLS_CERTIFICATE_BAD_IDENTITY, WebErrorStatus::CertificateCommonNameIsIncorrect},
        {G_TLS_CERTIFICATE_UNKNOWN_CA, WebErrorStatus::CertificateIsInvalid},
    };
    for (auto const& [flag, status] : mappings) {
        if (certificate_errors & flag) {
            return status;
        }
    }
    return WebErrorStatus::CertificateContainsErrors;
}

GQuark platform_error_quark() {
    return g_quark_from_static_string("platform-error");
}

bool is_cancellation(GError const& error) {
    return g_error_matches(&error, WEBKIT_NETWORK_ERROR, WEBKIT_NETWORK_ERROR_CANCELLED);
}

}  // namespace runtime
