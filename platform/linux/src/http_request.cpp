#include "http_request.h"

#include <libsoup/soup.h>

#include <algorithm>

#include "implementation.h"

namespace runtime {

namespace {

/// A request, and the collection of its headers.
struct request_object : winrt::impl::object {
    explicit request_object(std::string uri) : uri(std::move(uri)) {}

    std::string const uri;
    std::vector<std::pair<std::string, std::string>> headers;
};

bool is_token_character(char character) {
    return g_ascii_isalnum(character) ||
           (character != '\0' &&
            std::string_view("!#$%&'*+-.^_`|~").find(character) != std::string_view::npos);
}

bool is_value_character(char character) {
    return character == '\t' || !g_ascii_iscntrl(character);
}

}  // namespace

gobject_ptr<WebKitURIRequest> engine_request(winrt::Windows::Web::Http::HttpRequestMessage const& message) {
    auto const object = implementation_of<request_object>(message);
    auto request = gobject_ptr<WebKitURIRequest>::adopt(webkit_uri_request_new(object->uri.c_str()));
    SoupMessageHeaders* const headers = webkit_uri_request_get_http_headers(request.get());
    if (!headers) {
        throw winrt::hresult_error(E_INVALIDARG, L"Only requests to http and https have headers.");
    }
    for (auto const& [name, value] : object->headers) {
        soup_message_headers_append(headers, name.c_str(), value.c_str());
    }
    return request;
}

}  // namespace runtime

namespace winrt::Windows::Web::Http {

using runtime::implementation_of;
using runtime::request_object;

HttpMethod HttpMethod::Get() {
    static auto const& method = *new std::shared_ptr<impl::object>(std::make_shared<impl::object>());
    return HttpMethod(method);
}

HttpRequestMessage::HttpRequestMessage(HttpMethod const& method, Foundation::Uri const& uri)
    : IInspectable(std::make_shared<request_object>(to_string(uri.AbsoluteUri()))) {
    implementation_of<impl::object>(method);
}

Headers::HttpRequestHeaderCollection HttpRequestMessage::Headers() const {
    return Headers::HttpRequestHeaderCollection(implementation_of<request_object>(*this));
}

}  // namespace winrt::Windows::Web::Http

namespace winrt::Windows::Web::Http::Headers {

bool HttpRequestHeaderCollection::TryAppendWithoutValidation(param::hstring const& name,
                                                             param::hstring const& value) const {
    auto const request = implementation_of<request_object>(*this);
    auto nameText = to_string(name.value);
    auto valueText = to_string(value.value);
    bool const valid = !nameText.empty() && std::ranges::all_of(nameText, runtime::is_token_character) &&
                       std::ranges::all_of(valueText, runtime::is_value_character);
    if (valid) {
        request->headers.emplace_back(std::move(nameText), std::move(valueText));
    }
    return valid;
}

}  // namespace winrt::Windows::Web::Http::Headers
