#include "local_content.h"

#include <libsoup/soup.h>

#include <algorithm>
#include <array>
#include <map>

#include "../page_process/media_part.h"
#include "content_request.h"
#include "file_system.h"
#include "glib_ptr.h"
#include "implementation.h"
#include "ui_thread.h"

namespace runtime {

namespace {

using winrt::Windows::Foundation::Uri;
using winrt::Windows::Web::IUriToStreamResolver;

using resolvers = std::map<std::string, IUriToStreamResolver>;

constexpr char const* scheme = "ms-local-stream";
constexpr std::string_view uri_start = "ms-local-stream://";
constexpr char const* resolvers_key = "runtime-resolvers";
constexpr char const* shown_host_key = "runtime-shown-host";

/// The host of a local address; empty for any other.
std::string host_of(char const* uri) {
    std::string_view text = uri ? uri : "";
    if (!is_local(text)) {
        return {};
    }
    text.remove_prefix(uri_start.size());
    std::string host(text.substr(0, text.find_first_of("/?#")));
    for (char& character : host) {
        character = g_ascii_tolower(character);
    }
    return host;
}

/// Who answers a request of a view. The page that the view shows or is about to show must be of the very same
/// origin: the engine itself shields local content only from pages of other schemes.
IUriToStreamResolver resolver_for(WebKitWebView* view, std::string const& host) {
    if (!view || host.empty() || host_of(webkit_web_view_get_uri(view)) != host) {
        return nullptr;
    }
    auto const* const known = static_cast<resolvers const*>(g_object_get_data(G_OBJECT(view), resolvers_key));
    if (!known) {
        return nullptr;
    }
    auto const found = known->find(host);
    return found == known->end() ? nullptr : found->second;
}

/// Whether the request says that it comes from a page of another scheme. From a frame in a local page the
/// engine lets synchronous ones through to us, and would let the frame read the answer.
bool is_foreign(WebKitURISchemeRequest* request) {
    auto* const headers = webkit_uri_scheme_request_get_http_headers(request);
    return std::ranges::any_of(std::array{"Origin", "Referer"}, [&](char const* name) {
        char const* const source = headers ? soup_message_headers_get_one(headers, name) : nullptr;
        return source && !is_local(source);
    });
}

void answer_or_refuse(std::shared_ptr<content_request> const& request, IUriToStreamResolver const& resolver) {
    if (resolver) {
        answer(request, resolver);
    } else {
        request->refuse(static_cast<int>(SOUP_STATUS_FORBIDDEN), "Local content is not for this page.");
    }
}

void on_request(WebKitURISchemeRequest* request, gpointer) {
    auto const resolver = is_foreign(request)
                              ? nullptr
                              : resolver_for(webkit_uri_scheme_request_get_web_view(request),
                                             host_of(webkit_uri_scheme_request_get_uri(request)));
    answer_or_refuse(make_ui_object<scheme_request>(request), resolver);
}

void on_load_changed(WebKitWebView* view, WebKitLoadEvent event, gpointer) {
    if (event == WEBKIT_LOAD_COMMITTED) {
        auto const host = host_of(webkit_web_view_get_uri(view));
        g_object_set_data_full(G_OBJECT(view), shown_host_key, g_strdup(host.c_str()), g_free);
    }
}

/// A message of the page process, which nobody has to trust.
gboolean on_user_message(WebKitWebView* view, WebKitUserMessage* message, gpointer) {
    auto* const parameters = webkit_user_message_get_parameters(message);
    if (g_strcmp0(webkit_user_message_get_name(message), media_part_message) != 0 || !parameters ||
        !g_variant_is_of_type(parameters, G_VARIANT_TYPE(media_part_request))) {
        return FALSE;
    }
    char const* uri = nullptr;
    guint64 begin = 0;
    g_variant_get(parameters, "(&st)", &uri, &begin);
    // Only a page that is there plays media. From the one before, while a local page begins to load, it is no
    // request.
    auto const* const shown = static_cast<char const*>(g_object_get_data(G_OBJECT(view), shown_host_key));
    auto const host = host_of(uri);
    answer_or_refuse(make_ui_object<media_request>(message, uri, begin),
                     shown && host == shown ? resolver_for(view, host) : nullptr);
    return TRUE;
}

/// The program's name as a part of a host.
std::string program_host() {
    std::string name = program_name();
    for (char& character : name) {
        character = g_ascii_isalnum(character) || character == '.' ? g_ascii_tolower(character) : '-';
    }
    return name;
}

}  // namespace

bool is_local(std::string_view uri) {
    return uri.starts_with(uri_start);
}

void offer_local_content(WebKitWebContext* context) {
    webkit_web_context_register_uri_scheme(context, scheme, on_request, nullptr, nullptr);
    auto* const security = webkit_web_context_get_security_manager(context);
    webkit_security_manager_register_uri_scheme_as_display_isolated(security, scheme);
    webkit_security_manager_register_uri_scheme_as_secure(security, scheme);
}

Uri local_uri(winrt::hstring const& identifier, winrt::hstring const& path) {
    std::string text = std::string(scheme) + "://" + program_host() + '_';
    for (char const character : winrt::to_string(identifier)) {
        auto const byte = static_cast<unsigned char>(character);
        text += {"0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 0xF]};
    }
    std::string const relative = winrt::to_string(path);
    return Uri(winrt::to_hstring(text + (relative.starts_with('/') ? "" : "/") + relative));
}

void serve_local_content(WebKitWebView* view, std::string const& host, IUriToStreamResolver const& resolver) {
    auto* known = static_cast<resolvers*>(g_object_get_data(G_OBJECT(view), resolvers_key));
    if (!known) {
        known = new resolvers();
        g_object_set_data_full(G_OBJECT(view), resolvers_key, known,
                               [](gpointer data) { delete static_cast<resolvers*>(data); });
        g_signal_connect(view, "user-message-received", G_CALLBACK(on_user_message), nullptr);
        g_signal_connect(view, "load-changed", G_CALLBACK(on_load_changed), nullptr);
    }
    known->insert_or_assign(host, resolver);
}

}  // namespace runtime

namespace winrt::Windows::Web {

Foundation::IAsyncOperation<Storage::Streams::IInputStream> IUriToStreamResolver::UriToStreamAsync(
    Foundation::Uri const& uri) const {
    return runtime::implementation_of<impl::abi<IUriToStreamResolver>>(*this)->uri_to_stream(uri);
}

}  // namespace winrt::Windows::Web
