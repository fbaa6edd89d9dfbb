// Request headers, one a line, as the engine gives them: on their way to the browser engine no line becomes
// another header than it says, or a second one.

#include <libsoup/soup.h>

#include <algorithm>
#include <map>

#include "fuzz/support/Require.h"
#include "glib_ptr.h"
#include "http_request.h"
#include "platform.h"
#include "ui_thread.h"
#include "webview/NavigationRules.h"

namespace {

using Header = std::pair<std::string, std::string>;

std::vector<Header> receivedBy(const http::HttpRequestMessage& message) {
    return runtime::ui_thread::instance().invoke([&message] {
        const auto request = runtime::engine_request(message);
        std::vector<Header> received;
        soup_message_headers_foreach(
            webkit_uri_request_get_http_headers(request.get()),
            [](const char* name, const char* value, gpointer data) {
                static_cast<std::vector<Header>*>(data)->emplace_back(name, value);
            },
            &received);
        return received;
    });
}

/// By name, in small letters: the engine spells known names its own way, and keeps only those of one name in
/// order.
std::multimap<std::string, std::string> ordered(const std::vector<Header>& headers) {
    std::multimap<std::string, std::string> byName;
    for (const auto& [name, value] : headers) {
        byName.emplace(runtime::glib_text(g_ascii_strdown(name.c_str(), -1)).get(), value);
    }
    return byName;
}

/// How many headers whoever reads the request finds in it.
std::size_t countInRequest(const std::vector<Header>& headers) {
    std::string text = "GET / HTTP/1.1\r\n";
    for (const auto& [name, value] : headers) {
        text += name + ": " + value + "\r\n";
    }
    auto* const parsed = soup_message_headers_new(SOUP_MESSAGE_HEADERS_REQUEST);
    std::size_t count = 0;
    if (soup_headers_parse(text.c_str(), static_cast<int>(text.size()), parsed)) {
        soup_message_headers_foreach(
            parsed, [](const char*, const char*, gpointer data) { ++*static_cast<std::size_t*>(data); },
            &count);
    }
    soup_message_headers_unref(parsed);
    return count;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const HeaderLines lines = splitHeaders(text);
    const auto lineCount = 1 + static_cast<std::size_t>(std::ranges::count(text, '\n'));
    require(lines.headers.size() + lines.invalidLines.size() == lineCount, "each line is one header or none",
            readable(text));

    const http::HttpRequestMessage message(http::HttpMethod::Get(), foundation::Uri(L"http://example.com/"));
    std::vector<Header> accepted;
    for (const auto& [name, value] : lines.headers) {
        const auto wideName = winrt::to_hstring(name);
        const auto wideValue = winrt::to_hstring(value);
        if (message.Headers().TryAppendWithoutValidation(wideName, wideValue)) {
            accepted.emplace_back(winrt::to_string(wideName), winrt::to_string(wideValue));
        }
    }
    const auto isControl = [](char character) {
        return (character >= 0 && character < ' ' && character != '\t') || character == 0x7F;
    };
    for (const auto& [name, value] : accepted) {
        require(!name.empty() && std::ranges::none_of(name, isControl) &&
                    name.find_first_of(" \t:") == std::string::npos,
                "a header's name is one", readable(name));
        require(std::ranges::none_of(value, isControl), "no control character is in a header",
                readable(value));
    }
    require(ordered(receivedBy(message)) == ordered(accepted), "the engine gets the headers as they are",
            readable(text));
    require(countInRequest(accepted) == accepted.size(), "a request has one header for each line",
            readable(text));
    return 0;
}
