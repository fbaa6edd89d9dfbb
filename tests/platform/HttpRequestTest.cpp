#include <gtest/gtest.h>
#include <libsoup/soup.h>

#include "http_request.h"
#include "ui_thread.h"

using namespace winrt::Windows::Web::Http;
using winrt::Windows::Foundation::Uri;

TEST(HttpRequestTest, HeadersReachTheEngine) {
    const HttpRequestMessage message(HttpMethod::Get(), Uri(L"http://example.com/a b"));
    EXPECT_TRUE(message.Headers().TryAppendWithoutValidation(L"X-First", L"1: a\tb"));
    EXPECT_TRUE(message.Headers().TryAppendWithoutValidation(L"Authorization", L"Bearer x=="));
    EXPECT_TRUE(message.Headers().TryAppendWithoutValidation(L"X-Empty", L""));
    EXPECT_TRUE(message.Headers().TryAppendWithoutValidation(L"X-First", L"2"));
    for (const auto* name : {L"", L"a b", L"a:", L"a\n", L"ü", L"(a)"}) {
        EXPECT_FALSE(message.Headers().TryAppendWithoutValidation(name, L"v")) << winrt::to_string(name);
    }
    for (const auto* value : {L"a\nb", L"a\r\nX-Forged: 1", L"a\x01"}) {
        EXPECT_FALSE(message.Headers().TryAppendWithoutValidation(L"n", value)) << winrt::to_string(value);
    }
    EXPECT_FALSE(message.Headers().TryAppendWithoutValidation(L"n", winrt::hstring(L"a\0b", 3)));

    runtime::ui_thread::instance().invoke([&] {
        const auto request = runtime::engine_request(message);
        EXPECT_STREQ(webkit_uri_request_get_uri(request.get()), "http://example.com/a%20b");
        auto* const headers = webkit_uri_request_get_http_headers(request.get());
        EXPECT_STREQ(soup_message_headers_get_list(headers, "X-First"), "1: a\tb, 2");
        EXPECT_STREQ(soup_message_headers_get_one(headers, "Authorization"), "Bearer x==");
        EXPECT_STREQ(soup_message_headers_get_one(headers, "X-Empty"), "");
        EXPECT_EQ(soup_message_headers_get_list(headers, "n"), nullptr);
    });
}

TEST(HttpRequestTest, OnlyHttpHasHeaders) {
    const HttpRequestMessage message(HttpMethod::Get(), Uri(L"file:///etc/passwd"));
    runtime::ui_thread::instance().invoke(
        [&] { EXPECT_THROW(runtime::engine_request(message), winrt::hresult_error); });
    EXPECT_THROW(HttpRequestMessage(HttpMethod::Get(), Uri(nullptr)), winrt::hresult_error);
}
