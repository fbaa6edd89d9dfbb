#include "content_request.h"

#include <libsoup/soup.h>

#include <array>
#include <optional>

#include "../page_process/media_part.h"
#include "content_stream.h"
#include "content_type.h"
#include "implementation.h"
#include "load_errors.h"
#include "stream.h"
#include "ui_thread.h"

namespace runtime {

using winrt::Windows::Foundation::Uri;
using winrt::Windows::Web::IUriToStreamResolver;

/// What a request is answered with: a stream from some place to its end.
struct content {
    std::shared_ptr<stream_object> source;
    uint64_t begin = 0;
    uint64_t length = 0;
    std::string type;
};

namespace {

struct refusal {
    int status = 0;
    std::string reason;
};

/// The content from the place where the resolver has left its stream.
content read_content(winrt::Windows::Storage::Streams::IInputStream const& stream, Uri const& uri) {
    auto source = implementation_of<stream_object>(stream);
    auto const begin = source->position();
    auto const end = std::max(source->size(), begin);
    std::array<uint8_t, content_type_evidence> head{};
    auto const size = source->read(begin, head);
    auto type = content_type(winrt::to_string(Uri::UnescapeComponent(uri.Path())), {head.data(), size});
    return {std::move(source), begin, end - begin, std::move(type)};
}

int status_of(winrt::hresult code) {
    switch (code) {
        case HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND):
        case HRESULT_FROM_WIN32(ERROR_PATH_NOT_FOUND):
            return SOUP_STATUS_NOT_FOUND;
        case E_ACCESSDENIED:
            return SOUP_STATUS_FORBIDDEN;
        default:
            return SOUP_STATUS_INTERNAL_SERVER_ERROR;
    }
}

/// The first and last byte that a request asks for; nothing when it asks for everything, or for several
/// parts, which nobody is bound to give.
std::optional<SoupRange> requested_range(SoupMessageHeaders* headers, uint64_t length) {
    SoupRange* ranges = nullptr;
    int count = 0;
    auto const total = static_cast<goffset>(length);
    if (!headers || !soup_message_headers_get_ranges(headers, total, &ranges, &count)) {
        return std::nullopt;
    }
    SoupRange range = ranges[0];
    soup_message_headers_free_ranges(headers, ranges);
    if (count != 1) {
        return std::nullopt;
    }
    range.start = std::max<goffset>(range.start, 0);
    range.end = std::min<goffset>(range.end, total - 1);
    return range;
}

}  // namespace

scheme_request::scheme_request(WebKitURISchemeRequest* request)
    : content_request(webkit_uri_scheme_request_get_uri(request)),
      request(gobject_ptr<WebKitURISchemeRequest>::share(request)) {}

void scheme_request::refuse(int status, std::string const& reason) const {
    std::unique_ptr<GError, release_with<g_error_free>> const error(
        g_error_new_literal(platform_error_quark(), status, reason.c_str()));
    webkit_uri_scheme_request_finish_error(request.get(), error.get());
}

void scheme_request::answer(content const& content) const {
    auto* const headers = soup_message_headers_new(SOUP_MESSAGE_HEADERS_RESPONSE);
    soup_message_headers_append(headers, "Accept-Ranges", "bytes");
    soup_message_headers_append(headers, "Content-Type", content.type.c_str());
    // The same address may stand for something else by the next time.
    soup_message_headers_append(headers, "Cache-Control", "no-cache");
    auto part = content;
    guint status = SOUP_STATUS_OK;
    if (auto const range =
            requested_range(webkit_uri_scheme_request_get_http_headers(request.get()), content.length)) {
        bool const satisfiable = range->start <= range->end;
        auto const total = std::to_string(content.length);
        auto const extent =
            satisfiable ? std::to_string(range->start) + '-' + std::to_string(range->end) : "*";
        soup_message_headers_append(headers, "Content-Range", ("bytes " + extent + '/' + total).c_str());
        status = satisfiable ? SOUP_STATUS_PARTIAL_CONTENT : SOUP_STATUS_REQUESTED_RANGE_NOT_SATISFIABLE;
        part.begin += satisfiable ? static_cast<uint64_t>(range->start) : 0;
        part.length = satisfiable ? static_cast<uint64_t>(range->end - range->start) + 1 : 0;
    }
    soup_message_headers_set_content_length(headers, static_cast<goffset>(part.length));
    if (g_strcmp0(webkit_uri_scheme_request_get_http_method(request.get()), SOUP_METHOD_HEAD) == 0) {
        part.length = 0;
    }
    auto const stream = open_content(part.source, part.begin, part.length);
    auto const response = gobject_ptr<WebKitURISchemeResponse>::adopt(
        webkit_uri_scheme_response_new(stream.get(), static_cast<gint64>(part.length)));
    webkit_uri_scheme_response_set_status(response.get(), status, soup_status_get_phrase(status));
    webkit_uri_scheme_response_set_content_type(response.get(), content.type.c_str());
    webkit_uri_scheme_response_set_http_headers(response.get(), headers);
    webkit_uri_scheme_request_finish_with_response(request.get(), response.get());
}

media_request::media_request(WebKitUserMessage* message, std::string uri, uint64_t begin)
    : content_request(std::move(uri)),
      message(gobject_ptr<WebKitUserMessage>::share(message)),
      begin(begin) {}

void media_request::refuse(int, std::string const&) const {
    webkit_user_message_send_reply(message.get(), webkit_user_message_new(media_part_message, nullptr));
}

void media_request::answer(content const& content) const {
    struct reading {
        gobject_ptr<WebKitUserMessage> message;
        uint64_t total;
    };
    auto const skipped = std::min(begin, content.length);
    auto const stream = open_content(content.source, content.begin + skipped, content.length - skipped);
    g_input_stream_read_bytes_async(
        stream.get(), media_part_size, G_PRIORITY_DEFAULT, nullptr,
        [](GObject* stream, GAsyncResult* result, gpointer data) {
            std::unique_ptr<reading> const read(static_cast<reading*>(data));
            std::unique_ptr<GBytes, release_with<g_bytes_unref>> const bytes(
                g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, nullptr));
            GVariant* const parameters =
                bytes ? g_variant_new(media_part_answer, read->total,
                                      g_variant_new_from_bytes(G_VARIANT_TYPE_BYTESTRING, bytes.get(), TRUE))
                      : nullptr;
            webkit_user_message_send_reply(read->message.get(),
                                           webkit_user_message_new(media_part_message, parameters));
        },
        new reading{message, content.length});
}

winrt::fire_and_forget answer(std::shared_ptr<content_request> request, IUriToStreamResolver resolver) {
    co_await winrt::resume_background();
    std::optional<content> found;
    refusal failure{SOUP_STATUS_INTERNAL_SERVER_ERROR, "The resolver failed."};
    try {
        Uri const uri(winrt::to_hstring(request->uri.substr(0, request->uri.find('#'))));
        auto const operation = resolver.UriToStreamAsync(uri);
        if (!operation) {
            throw winrt::hresult_error(E_POINTER);
        }
        found = read_content(co_await operation, uri);
    } catch (winrt::hresult_error const& error) {
        failure = {status_of(error.code()), winrt::to_string(error.message())};
    } catch (std::exception const& error) {
        failure.reason = error.what();
    }
    ui_thread::instance().post([request, found, failure] {
        if (found) {
            request->answer(*found);
        } else {
            request->refuse(failure.status, failure.reason);
        }
    });
}

}  // namespace runtime
