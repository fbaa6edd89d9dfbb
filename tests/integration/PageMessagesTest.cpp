// What pages report: on their own, through the agent, and from frames.

#include "support/EngineTest.h"

namespace {

class PageMessagesTest : public ViewTest {
  protected:
    bool waitForPageMessage(const std::string& payload, std::size_t from = 0) {
        return recorder()
            .waitFor(
                [&](const Record& record) {
                    return record.target == view.target() && record.method == "HandleMessageEmitted" &&
                           record.payload == payload;
                },
                from)
            .has_value();
    }

    /// The messages of pages and agent since a position: a script's answer comes after what it sent.
    std::vector<std::string> pageMessagesSince(std::size_t from) {
        evaluate("1");
        std::vector<std::string> payloads;
        for (const auto& record : recorder().since(from)) {
            if (record.target == view.target() && record.method == "HandleMessageEmitted") {
                payloads.push_back(record.payload);
            }
        }
        return payloads;
    }
};

std::string consoleMessage(const std::string& level, const std::string& message) {
    return R"({"type":"zarvik.webview.consoleMessageLogged","level":")" + level + R"(","message":")" +
           message + R"("})";
}

const std::string focusedText = R"({"type":"zarvik.webview.focusedInputFieldChanged","value":"TEXT"})";

}  // namespace

TEST_F(PageMessagesTest, MessagesArriveUnchangedAndInOrder) {
    server.page("/page", R"(<script>_zarvikBridge.postMessage('before the agent')</script>)");
    load(view, server.url("/page"));
    EXPECT_TRUE(waitForPageMessage("before the agent"));
    EXPECT_TRUE(waitForPageMessage(R"({"type":"zarvik.webview.urlChanged","urlAction":{"Url":")" +
                                   server.url("/page") + R"(","Title":"","Type":"LOAD"}})"));
    const auto from = recorder().position();
    evaluate(R"(zarvik.postMessage('plain "text" ü 😀 \n'); zarvik.postMessage({ a: 1, b: ['x'] });
                zarvik.postMessage('zarvik.webview.uwp.iframesNeedBrowserAgent');
                zarvik.postMessage('x zarvik.webview.uwp.iframesNeedBrowserAgent');
                zarvik.postMessage('x zarvik.webview.pageTransparencyDetermined true'))");
    EXPECT_EQ(pageMessagesSince(from),
              (std::vector<std::string>{"plain \"text\" ü 😀 \n", R"({"a":1,"b":["x"]})",
                                        "x zarvik.webview.uwp.iframesNeedBrowserAgent"}));
}

TEST_F(PageMessagesTest, ConsoleMessagesAreReportedWhileEnabled) {
    const std::string page = "<script>addEventListener('zarvikready', () => console.warn('ready'))</script>";
    loadHtml(view, page);
    auto from = recorder().position();
    evaluate("console.log('off')");
    plugin().WebView_setConsoleMessageEventsEnabled(view.handle(), 1);
    evaluate("console.log('a', {b: 1}, null, undefined)");
    plugin().WebView_setConsoleMessageEventsEnabled(view.handle(), 0);
    evaluate("console.log('off again')");
    EXPECT_EQ(pageMessagesSince(from),
              std::vector<std::string>{consoleMessage("LOG", R"(a, {\"b\":1}, null, )")});

    plugin().WebView_setConsoleMessageEventsEnabled(view.handle(), 1);
    from = recorder().position();
    loadHtml(view, page);
    EXPECT_TRUE(waitForPageMessage(consoleMessage("WARNING", "ready"), from));
}

TEST_F(PageMessagesTest, FocusedInputFieldsAreReportedOnceEnabled) {
    const std::string page = "<input id=text>";
    loadHtml(view, page);
    auto from = recorder().position();
    plugin().WebView_setFocusedInputFieldEventsEnabled(view.handle(), 1);
    evaluate("document.getElementById('text').focus()");
    EXPECT_TRUE(waitForPageMessage(focusedText, from));
    // The flag counts for later pages as well.
    loadHtml(view, page);
    from = recorder().position();
    evaluate("document.getElementById('text').focus()");
    EXPECT_TRUE(waitForPageMessage(focusedText, from));
}

TEST_F(PageMessagesTest, FramesOfTheSameOriginAreGivenTheAgent) {
    server.page("/frame", "<p>frame");
    server.page("/page", "<iframe id=own src=/frame></iframe><iframe id=foreign src='" +
                             server.otherOriginUrl("/frame") + "'></iframe>");
    load(view, server.url("/page"));
    EXPECT_TRUE(waitForResult(view, "typeof own.contentWindow.__initZarvik", "function"));
    EXPECT_EQ(evaluate("foreign.dataset.zarvikTarget"), "undefined");
    for (const auto& message : pageMessagesSince(0)) {
        EXPECT_EQ(message.find("iframesNeedBrowserAgent"), std::string::npos);
    }

    // A frame that asks while the agent is being started in another one is not forgotten.
    evaluate(R"(const add = (id) => {
                    const frame = document.createElement('iframe');
                    frame.id = id;
                    frame.dataset.zarvikManaged = frame.dataset.zarvikTarget = true;
                    document.body.append(frame);
                    zarvik.postMessage('zarvik.webview.uwp.iframesNeedBrowserAgent');
                };
                add('first');
                Object.defineProperty(first.contentWindow, '__initZarvik', {
                    get: () => () => {},
                    set: () => add('second')
                }))");
    EXPECT_TRUE(waitForResult(view, "typeof window.second?.contentWindow.__initZarvik", "function"));
}

TEST_F(PageMessagesTest, ThePageIsWhiteUnlessItIsMeantToBeTransparent) {
    const std::string transparent = "<meta name=transparent content=true><body><p>text";
    const auto corner = [&](const Image::Pixel& expected) {
        return waitForPixels(view, [&](const Image& image) {
            return std::equal(expected.begin(), expected.end(), image.pixels.end() - 4);
        });
    };
    const Image::Pixel white{255, 255, 255, 255};
    const Image::Pixel clear{0, 0, 0, 0};
    const Image::Pixel red{0, 0, 255, 255};

    const std::string layers = "document.querySelectorAll('zarvik-page-background').length";
    loadHtml(view, "<p>text");
    EXPECT_TRUE(waitForResult(view, layers, "1"));
    EXPECT_TRUE(corner(white));
    loadHtml(view, transparent);
    EXPECT_TRUE(corner(clear));
    EXPECT_EQ(evaluate(layers), "0");
    loadHtml(view, "<body style='background: red'>");
    EXPECT_TRUE(corner(red));
    // Through half of this page shows half of what is behind; nothing remains of the one before.
    loadHtml(view, transparent + R"(<style>body { margin: 0 } div { position: absolute; left: 0; top: 0;
        width: 50%; height: 100%; background: rgb(255 0 0 / 50%) } p { display: none }</style><div></div>)");
    const Image::Pixel halfRed{0, 0, 128, 128};  // premultiplied
    EXPECT_TRUE(waitForPixels(view, [&](const Image& image) {
        int wrong = 0;
        for (std::size_t i = 0; i < image.pixels.size(); ++i) {
            const bool isLeft = i / 4 % 320 < 160;
            wrong += std::abs(image.pixels[i] - (isLeft ? halfRed : clear)[i % 4]) > 1 ? 1 : 0;
        }
        return wrong == 0;
    }));

    plugin().WebView_setDefaultBackgroundEnabled(view.handle(), 0);
    loadHtml(view, "<p>text");
    EXPECT_TRUE(corner(clear));
    plugin().WebView_setDefaultBackgroundEnabled(view.handle(), 1);
    loadHtml(view, "<p>text");
    EXPECT_TRUE(corner(white));
}
