#pragma once

#include <gio/gio.h>

#include <winrt/Windows.Web.h>

namespace runtime {

/// What the browser engine's error means in the platform's terms.
winrt::Windows::Web::WebErrorStatus error_status(GError const& error);
winrt::Windows::Web::WebErrorStatus error_status(GTlsCertificateFlags certificate_errors);

/// The domain of errors whose codes are those of the platform already.
GQuark platform_error_quark();

/// Whether the error says that the load was given up, not that it failed.
bool is_cancellation(GError const& error);

}  // namespace runtime
