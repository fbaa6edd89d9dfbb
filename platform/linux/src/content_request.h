#pragma once

#include <webkit2/webkit2.h>

#include <string>

#include <winrt/Windows.Web.h>

#include "glib_ptr.h"

namespace runtime {

/// A page's request for local content. It comes and goes on the user-interface thread.
struct content_request : winrt::impl::object {
    explicit content_request(WebKitURISchemeRequest* request);

    /// The answers of which a request needs one. User-interface thread only.
    void refuse(int status, std::string const& reason) const;
    void answer(struct content const& content) const;

    gobject_ptr<WebKitURISchemeRequest> const request;
    std::string const uri;
};

/// Answers a request with what the resolver gives, which it is asked for on a pool thread.
winrt::fire_and_forget answer(std::shared_ptr<content_request> request,
                              winrt::Windows::Web::IUriToStreamResolver resolver);

}  // namespace runtime
