#include <thread>

#include "PageTest.h"
#include "page_world.h"
#include "web_view.h"

using namespace std::chrono_literals;
using namespace std::string_literals;
using winrt::Windows::Foundation::Uri;

class WebAllowedObjectTest : public PageTest {
  protected:
    /// The messages, once there are as many as are expected and the page has nothing under way any more.
    static Texts received(WebView const& view, std::shared_ptr<Texts> const& messages, size_t count) {
        EXPECT_TRUE(comesTrue([&] { return messages->size() >= count; }));
        eval(view, L"0");
        return onUIThread([&] { return std::exchange(*messages, {}); });
    }
};

TEST_F(WebAllowedObjectTest, IsThereBeforeThePagesScriptsAndCannotBeChanged) {
    server.page("/", R"(<script>
        bridge.postMessage('first');
        for (const change of [() => { bridge = {} }, () => { delete window.bridge }, () => { bridge.more = 1 },
                              () => { bridge.postMessage = () => {} }, () => { delete bridge.postMessage },
                              () => { Object.defineProperty(window, 'bridge', {value: {}}) },
                              () => { window.webkit.messageHandlers.object.postMessage('1 0 0 forged') },
                              () => { bridge.postMessage(Symbol()) }, () => { bridge.postMessage() }]) {
            try { change() } catch { }
        }
        bridge.postMessage(Object.keys(window).includes('bridge'));
        bridge.postMessage(typeof webkit + typeof invoke + typeof page + typeof evaluate);
        bridge.postMessage({toString: () => 'converted'});
        bridge.postMessage('\0 \ud800 \u2028 \ud83d\ude00', 'ignored');
    </script>)");
    auto const view = makeView();
    auto const messages = addBridges(view);
    load(view, server.url("/"));
    EXPECT_EQ(received(view, messages, 5),
              (Texts{"1:first", "1:false", "1:undefinedundefinedundefinedundefined", "1:converted",
                     "1:\0 \uFFFD \u2028 \U0001F600"s}));

    // It is there as soon as the page is announced, also when the page comes in pieces.
    server.on("/slow", [](const auto&, auto& response) {
        response.set_chunked_content_provider("text/html", [](size_t, auto& sink) {
            sink.write("<!doctype html>", 15);
            std::this_thread::sleep_for(200ms);
            sink.write("<p>", 3);
            sink.done();
            return true;
        });
    });
    auto const atStart = std::make_shared<std::promise<std::wstring>>();
    onUIThread([&] {
        view.ContentLoading([atStart](auto const& sender, auto const&) {
            [](auto call, auto answer) -> winrt::fire_and_forget {
                answer->set_value(std::wstring(co_await call));
            }(sender.InvokeScriptAsync(L"eval", {L"typeof bridge"}), atStart);
        });
    });
    load(view, server.url("/slow"));
    EXPECT_EQ(atStart->get_future().get(), L"object");
}

TEST_F(WebAllowedObjectTest, BelongsToOneDocument) {
    server.page("/frame", R"(<script>
        const found = [typeof bridge, typeof webkit];
        try { found.push(typeof parent.bridge) } catch { found.push('refused') }
        parent.postMessage(found.join(), '*');
    </script>)");
    server.page("/",
                "<script>addEventListener('message', (event) => bridge.postMessage(event.data));"
                "addEventListener('pagehide', () => bridge.postMessage('leaves'))</script>"
                "<iframe src='" +
                    server.url("/frame") + "'></iframe><iframe src='" + server.otherOriginUrl("/frame") +
                    "'></iframe>");
    server.page("/next", "<script>bridge.postMessage(location.pathname)</script>");
    auto const view = makeView();
    auto const messages = addBridges(view);
    load(view, server.url("/"));
    auto frames = received(view, messages, 2);
    std::ranges::sort(frames);
    EXPECT_EQ(frames, (Texts{"1:undefined,undefined,object", "1:undefined,undefined,refused"}));
    load(view, server.url("/next"));
    EXPECT_EQ(received(view, messages, 2), (Texts{"1:leaves", "2:/next"}));

    auto const plain = makeView();
    load(plain, server.url("/next"));
    EXPECT_EQ(eval(plain, L"typeof bridge").text, L"undefined");
}

TEST_F(WebAllowedObjectTest, StaysWhenNoNewDocumentComes) {
    server.page("/", "<title>page</title>");
    server.on("/nothing", [](const auto&, auto& response) { response.status = 204; });
    auto const view = makeView();
    auto const messages = addBridges(view);
    load(view, server.url("/"));
    auto const cancel = std::make_shared<bool>(false);
    onUIThread([&] {
        view.NavigationStarting([cancel](auto const&, auto const& arguments) { arguments.Cancel(*cancel); });
    });
    Texts expected;
    for (auto const& url : {server.url("/#fragment"), server.url("/nothing"),
                            "http://127.0.0.1:" + std::to_string(closedPort()) + "/"}) {
        EXPECT_NE(ending(view, [&] { view.Navigate(Uri(winrt::to_hstring(url))); }), "no end") << url;
        eval(view, winrt::to_hstring("bridge.postMessage('after " + url + "')").c_str());
        expected.push_back("1:after " + url);
    }
    onUIThread([&] {
        *cancel = true;
        view.Navigate(Uri(winrt::to_hstring(server.url("/"))));
        *cancel = false;
    });
    eval(view, L"bridge.postMessage('after the refusal')");
    eval(view,
         L"document.open(); bridge.postMessage('opened'); document.write('<p>new'); document.close();"
         L"bridge.postMessage('written')");
    expected.insert(expected.end(), {"1:after the refusal", "1:opened", "1:written"});
    EXPECT_EQ(received(view, messages, 6), expected);
    load(view, server.url("/"));
    eval(view, L"bridge.postMessage('new')");
    EXPECT_EQ(received(view, messages, 1), (Texts{"6:new"}));
}

TEST_F(WebAllowedObjectTest, DeliversAllMessagesOfHostilePages) {
    constexpr int count = 20'000;
    server.page("/", "<script>" + std::string(hostileScript) + R"(
        function flood() {
            for (let i = 0; i < 20000; i++) { bridge.postMessage(i) }
            bridge.postMessage('end');
        }
    </script>)");
    auto const view = makeView();
    auto const messages = addBridges(view);
    load(view, server.url("/"));
    eval(view, L"flood()");
    auto const flood = received(view, messages, count + 1);
    ASSERT_EQ(flood.size(), count + 1U);
    for (int i = 0; i < count; ++i) {
        ASSERT_EQ(flood[static_cast<size_t>(i)], "1:" + std::to_string(i));
    }

    // Near the end of the stack every call may fail, and its error must be the page's own.
    server.page("/deep", R"(<script>
        let stolen = '';
        const look = (error) => {
            if (error.constructor.constructor !== Function) { stolen = 'stolen' }
        };
        const overflow = () => {
            try { overflow() } catch (error) { look(error) }
            try { bridge.postMessage('deep') } catch (error) { look(error) }
        };
        overflow();
        bridge.postMessage('end' + stolen);
    </script>)");
    load(view, server.url("/deep"));
    EXPECT_TRUE(comesTrue([&] { return !messages->empty() && messages->back().starts_with("2:end"); }));
    EXPECT_EQ(onUIThread([&] { return messages->back(); }), "2:end");
}

TEST_F(WebAllowedObjectTest, RefusesMessagesThatWouldCostTheEngineItsMemory) {
    auto const view = makeView();
    auto const messages = addBridges(view);
    loadText(view, L"page");
    EXPECT_EQ(
        eval(view, L"try { bridge.postMessage('x'.repeat((1 << 26) + 1)) } catch (error) { error + '' }")
            .text,
        L"Error: The message cannot be sent.");
    eval(view, L"bridge.postMessage('text')");
    EXPECT_EQ(received(view, messages, 1), (Texts{"1:text"}));
}

// Our scripts send texts only; a page's process that was taken over is not bound to.
TEST_F(WebAllowedObjectTest, SurvivesMessagesThatAreNoTexts) {
    auto const view = makeView();
    auto const messages = addBridges(view);
    loadText(view, L"page");
    onUIThread([&] {
        for (auto const* const handler : {"navigation", "object", "delivered"}) {
            auto const script =
                "webkit.messageHandlers."s + handler + ".postMessage({toString: 1, valueOf: 1}); 0";
            webkit_web_view_evaluate_javascript(runtime::object_of<runtime::web_view_object>(view).view(),
                                                script.c_str(), -1, runtime::page_world, nullptr, nullptr,
                                                nullptr, nullptr);
        }
    });
    eval(view, L"bridge.postMessage('text')");
    EXPECT_EQ(received(view, messages, 1), (Texts{"1:text"}));
}
