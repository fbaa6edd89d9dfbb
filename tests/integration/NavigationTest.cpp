// What the engine hears of page loads: which messages, in which order, on which thread.

#include <set>

#include "support/EngineTest.h"

namespace {

using Messages = std::vector<std::string>;

Messages successfulLoad(const std::string& url) {
    return {urlChanged(url), "HandleLoadStarted", "HandleLoadProgressUpdate 0.33",
            "HandleLoadProgressUpdate 0.66", "HandleLoadFinished"};
}

Messages operator+(Messages left, const Messages& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

const std::string failed = "HandleLoadFailed Page load failed with WebErrorStatus: ";

class NavigationTest : public ViewTest {
  protected:
    /// The messages, once as many as expected have come.
    Messages messagesUntil(std::size_t count, std::size_t from) {
        EXPECT_TRUE(waitUntil([&] { return messagesSince(from, view).size() >= count; }));
        return messagesSince(from, view);
    }

    Messages messagesOfLoad(const std::string& url) {
        const auto from = recorder().position();
        view.loadUrl(url);
        view.waitForLoad();
        return messagesSince(from, view);
    }
};

}  // namespace

TEST_F(NavigationTest, ALoadIsReportedInOrderOnOneThreadAndNoMoveWithinTheDocumentOrItsFrames) {
    server.page("/frame",
                "<script>parent.location.hash = 'moved'; history.pushState(null, '', '/other')</script>");
    server.page("/page", R"(<title>t</title><iframe id=f src=/frame></iframe><script>
        onload = () => {
            location.hash = 'a';
            history.pushState(null, '', '/pushed');
            history.replaceState(null, '', '/replaced');
            document.getElementById('f').src = '/frame?second';
            setTimeout(() => history.back(), 200);
            setTimeout(() => { document.open(); document.write('<p>written'); document.close(); }, 400);
            setTimeout(() => fetch('/done'), 800);
        };
    </script>)");
    load(view, server.url("/page"));
    ASSERT_TRUE(server.waitForRequest("/done"));
    EXPECT_EQ(messagesSince(0, view), successfulLoad(server.url("/page")));

    std::set<std::thread::id> threads;
    for (const auto& record : recorder().all()) {
        if (record.target == view.target() && record.method != "HandleTextureChanged") {
            threads.insert(record.thread);
            EXPECT_EQ(record.role, Record::ThreadRole::library);
        }
    }
    EXPECT_EQ(threads.size(), 1U);
}

TEST_F(NavigationTest, FailedLoadsEndWithTheStatus) {
    const TestServer secure(TestServer::Scheme::https);
    server.page("/missing", "<p>not here", 404);
    server.page("/broken", "<p>broken", 500);
    server.on("/empty", [](const httplib::Request&, httplib::Response& response) { response.status = 204; });
    server.content("/download", "application/octet-stream", "bytes");
    server.redirect("/loop", "/loop");

    struct {
        std::string url;
        std::string status;
        bool hasContent = false;
    } const cases[] = {
        {server.url("/missing"), "404", true},
        {server.url("/broken"), "500", true},
        {server.url("/empty"), "16"},
        {server.url("/download"), "16"},
        {server.url("/loop"), "17"},
        {"http://127.0.0.1:" + std::to_string(closedPort()) + "/", "14"},
        {"http://127.0.0.1:1/", "14"},
        {"http://name.invalid/", "15"},
        {secure.url("/"), "5"},
        {"https://127.0.0.1:" + std::to_string(server.port()) + "/", "8"},
        {"unknown:thing", "0"},
    };
    for (const auto& [url, status, hasContent] : cases) {
        const Messages content{"HandleLoadProgressUpdate 0.33", "HandleLoadProgressUpdate 0.66"};
        EXPECT_EQ(messagesOfLoad(url), Messages({urlChanged(url), "HandleLoadStarted"}) +
                                           (hasContent ? content : Messages()) + Messages{failed + status});
    }

    // The view is as good as before, and each failure was logged with the text that the engine got.
    server.page("/good", "<p>good");
    const auto errors = errorsSince(0);
    EXPECT_EQ(std::count(errors.begin(), errors.end(), "Page load failed with WebErrorStatus: 404"), 1);
    EXPECT_EQ(messagesOfLoad(server.url("/good")), successfulLoad(server.url("/good")));
}

TEST_F(NavigationTest, UrlsThatAreNoneAreRefusedWithTheReason) {
    server.page("/good", "<p>good");
    for (const std::string url :
         {"", "no url", "http://", "//host/path", "javascript:alert(1)", "http://[::1"}) {
        const auto from = recorder().position();
        view.loadUrl(url);
        const auto result = view.waitForLoad();
        EXPECT_EQ(result.outcome, LoadResult::Outcome::failed) << url;
        EXPECT_EQ(messagesSince(from, view), Messages{"HandleLoadFailed " + result.reason}) << url;
        EXPECT_EQ(errorsSince(from), std::vector<std::string>{result.reason}) << url;
    }
    EXPECT_EQ(messagesOfLoad(server.url("/good")), successfulLoad(server.url("/good")));
}

TEST_F(NavigationTest, HistoryAndReload) {
    server.page("/one", "<p>one");
    server.page("/two", "<p>two");
    server.redirect("/middle", "/two");
    server.redirect("/begin", "/middle");
    const auto canGo = [&] {
        const auto from = recorder().position();
        plugin().WebView_canGoBack(view.handle());
        plugin().WebView_canGoForward(view.handle());
        view.waitForMessage("HandleCanGoForwardResult", from);
        return messagesSince(from, view);
    };
    const auto answers = [](const std::string& back, const std::string& forward) {
        return Messages{"HandleCanGoBackResult " + back, "HandleCanGoForwardResult " + forward};
    };
    EXPECT_EQ(canGo(), answers("false", "false"));
    load(view, server.url("/one"));
    EXPECT_EQ(messagesOfLoad(server.url("/begin")), successfulLoad(server.url("/begin")));
    EXPECT_EQ(canGo(), answers("true", "false"));

    auto from = recorder().position();
    plugin().WebView_goBack(view.handle());
    EXPECT_EQ(messagesUntil(5, from), successfulLoad(server.url("/one")));
    EXPECT_EQ(canGo(), answers("false", "true"));

    from = recorder().position();
    plugin().WebView_goForward(view.handle());
    EXPECT_EQ(messagesUntil(5, from), successfulLoad(server.url("/two")));

    from = recorder().position();
    plugin().WebView_reload(view.handle());
    EXPECT_EQ(messagesUntil(5, from), successfulLoad(server.url("/two")));

    // With nowhere to go, and without a page, these do nothing.
    const View empty(engine, {10, 10});
    from = recorder().position();
    plugin().WebView_goBack(empty.handle());
    plugin().WebView_goForward(empty.handle());
    plugin().WebView_reload(empty.handle());
    plugin().WebView_stopLoad(empty.handle());
    plugin().WebView_canGoBack(empty.handle());
    empty.waitForMessage("HandleCanGoBackResult", from);
    EXPECT_EQ(messagesSince(from, empty), Messages{"HandleCanGoBackResult false"});
    EXPECT_EQ(errorsSince(from), Messages{});
}

TEST_F(NavigationTest, ALoadThatIsStoppedOrReplacedEndsBeforeItsSuccessorStarts) {
    server.stalledPage("/slow");
    server.stalledPage("/picture");
    server.page("/loading", "<img src=/picture>");
    server.page("/next", "<p>next");

    const Messages cancelled{urlChanged(server.url("/slow")), "HandleLoadStarted", failed + "16"};
    auto from = recorder().position();
    view.loadUrl(server.url("/slow"));
    ASSERT_TRUE(server.waitForRequest("/slow"));
    plugin().WebView_stopLoad(view.handle());
    EXPECT_EQ(messagesUntil(3, from), cancelled);
    from = recorder().position();
    view.loadUrl(server.url("/slow"));
    ASSERT_TRUE(waitUntil([this] { return server.requests("/slow").size() == 2; }));
    load(view, server.url("/next"));
    EXPECT_EQ(messagesSince(from, view), cancelled + successfulLoad(server.url("/next")));

    // Also when the document of the first one is there already and only a part of it is missing.
    from = recorder().position();
    view.loadUrl(server.url("/loading"));
    ASSERT_TRUE(server.waitForRequest("/picture"));
    load(view, server.url("/next"));
    auto messages = messagesSince(from, view);
    EXPECT_EQ(std::count(messages.begin(), messages.end(), failed + "16"), 1);
    EXPECT_EQ(messages.back(), "HandleLoadFinished");
    messages.erase(messages.begin(), messages.end() - 5);
    EXPECT_EQ(messages, successfulLoad(server.url("/next")));

    // And the same URL at once again.
    from = recorder().position();
    view.loadUrl(server.url("/next"));
    view.loadUrl(server.url("/next"));
    ASSERT_TRUE(view.waitForMessage("HandleLoadFinished", from));
    messages = messagesSince(from, view);
    EXPECT_EQ(std::count(messages.begin(), messages.end(), failed + "16"), 1);
    EXPECT_EQ(std::count(messages.begin(), messages.end(), "HandleLoadFinished"), 1);
}

TEST_F(NavigationTest, TextAndAFragmentOfThePageThatIsShown) {
    loadHtml(view, "<p>text");
    EXPECT_EQ(messagesSince(0, view), successfulLoad("about:blank"));
    server.page("/page", "<p id=there>there");
    load(view, server.url("/page"));
    const auto from = recorder().position();
    view.loadUrl(server.url("/page#there"));
    EXPECT_TRUE(view.waitForLoad());
    const auto messages = messagesSince(from, view);
    EXPECT_EQ(messages.front(), urlChanged(server.url("/page#there")));
    EXPECT_EQ(messages.back(), "HandleLoadFinished");
}

TEST_F(NavigationTest, NavigationsOfThePageItself) {
    server.page("/end", "<p>end");
    server.page("/script", "<script>onload = () => setTimeout(() => location.href = '/end', 50)</script>");
    server.page("/form",
                "<form action=/end method=post></form>"
                "<script>onload = () => setTimeout(() => document.forms[0].submit(), 50)</script>");
    server.page("/refresh", "<meta http-equiv=refresh content='0; url=/end'>");
    server.page("/opens", "<script>onload = () => setTimeout(() => open('/end'), 50)</script>");
    server.page("/blank",
                "<a target=_blank href=/end>a</a>"
                "<script>onload = () => setTimeout(() => document.links[0].click(), 50)</script>");
    server.page("/framed", "<iframe src='" + server.otherOriginUrl("/leaves") + "'></iframe>");
    server.page("/leaves",
                "<script>setTimeout(() => top.location = '" + server.url("/end") + "', 100)</script>");
    for (const auto* path : {"/script", "/form", "/refresh", "/opens", "/blank", "/framed"}) {
        const auto from = recorder().position();
        view.loadUrl(server.url(path));
        EXPECT_EQ(messagesUntil(10, from),
                  successfulLoad(server.url(path)) + successfulLoad(server.url("/end")))
            << path;
    }
}

TEST_F(NavigationTest, ALinkToAMissingPdfDoesNotLeaveThePage) {
    server.page("/a.pdf", "missing", 404);
    server.page("/page",
                "<body style='background: rgb(1, 2, 3)'>"
                "<script>onload = () => setTimeout(() => location.href = '/a.pdf', 50)</script>");
    const auto from = recorder().position();
    load(view, server.url("/page"));
    ASSERT_TRUE(view.waitForMessage("HandleLoadFailed", from));
    EXPECT_EQ(messagesSince(from, view).size(), 6U);
    EXPECT_EQ(server.requests("/a.pdf").size(), 1U);
    EXPECT_TRUE(
        waitForPixels(view, [](const Image& image) { return image.at(5, 5) == Image::Pixel{3, 2, 1, 255}; }));
}

TEST_F(NavigationTest, RequestHeaders) {
    server.page("/page", "<p>page");
    const auto from = recorder().position();
    plugin().WebView_loadUrlWithHeaders(
        view.handle(), server.url("/page").c_str(),
        "X-One: first\nno header\nX-Two: a: b\nX-Three:  padded \nX-Bad: a\rX-Forged: 1\n(a): b");
    ASSERT_TRUE(view.waitForMessage("HandleLoadFinished", from));
    const auto request = server.requests("/page").at(0);
    EXPECT_EQ(request.header("X-One"), "first");
    for (const auto* const name : {"X-Two", "X-Bad", "X-Forged", "(a)"}) {
        EXPECT_EQ(request.headers.count(name), 0U) << name;
    }
    EXPECT_EQ(request.headers.count("X-Three"), 1U);
    const std::string ignored = "The following header is invalid and will be ignored: ";
    EXPECT_EQ(errorsSince(from), (Messages{ignored + "no header", ignored + "X-Two: a: b",
                                           ignored + "X-Bad: a\rX-Forged: 1", ignored + "(a): b"}));
}

TEST_F(NavigationTest, DialogsAndPermissionRequestsDoNotHoldThePage) {
    server.page("/page", R"(<script>
        alert('a'); confirm('b'); prompt('c');
        onbeforeunload = (event) => event.preventDefault();
        navigator.geolocation.getCurrentPosition(() => fetch('/allowed'), (error) => fetch('/denied' + error.code));
    </script>)");
    server.page("/next", "<p>next");
    load(view, server.url("/page"));
    EXPECT_TRUE(server.waitForRequest("/denied1"));
    load(view, server.url("/next"));
}
