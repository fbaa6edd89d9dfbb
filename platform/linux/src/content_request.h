#pragma once

#include <webkit2/webkit2.h>

#include <string>

#include <winrt/Windows.Web.h>

#include "glib_ptr.h"

namespace runtime {

struct content;

/// A page's request for local content. It comes and goes on the user-interface thread.
struct content_request : winrt::impl::object {
    explicit content_request(std::string uri) : uri(std::move(uri)) {}

    /// The answers of which a request needs one. User-interface thread only.
    virtual void refuse(int status, std::string const& reason) const = 0;
    virtual void answer(content const& content) const = 0;

    std::string const uri;
};

/// A request of the engine's, for all or a range of what an address stands for.
struct scheme_request final : content_request {
    explicit scheme_request(WebKitURISchemeRequest* request);

    void refuse(int status, std::string const& reason) const override;
    void answer(content const& content) const override;

    gobject_ptr<WebKitURISchemeRequest> const request;
};

/// A request of a media element's, for a piece from some place on.
struct media_request final : content_request {
    media_request(WebKitUserMessage* message, std::string uri, uint64_t begin);

    void refuse(int status, std::string const& reason) const override;
    void answer(content const& content) const override;

    gobject_ptr<WebKitUserMessage> const message;
    uint64_t const begin;
};

/// Answers a request with what the resolver gives, which it is asked for on a pool thread.
winrt::fire_and_forget answer(std::shared_ptr<content_request> request,
                              winrt::Windows::Web::IUriToStreamResolver resolver);

}  // namespace runtime
