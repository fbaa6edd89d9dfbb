// Scripts that the engine runs in pages, and their answers.

#include <set>

#include "support/EngineTest.h"

namespace {

const std::string noResult =
    "Error: An unexpected error occurred while executing the script with ExecuteJavaScript(). This can "
    "happen if ExecuteJavaScript() is called when the page isn't loaded yet. Please use "
    "IWebView.LoadProgressChanged to detect when the page has finished loading. For more info, please check "
    "the Unity player logs.";

class ScriptsTest : public ViewTest {};

}  // namespace

TEST_F(ScriptsTest, AnswersAreText) {
    loadHtml(view, "<p>page");
    const auto from = recorder().position();
    plugin().WebView_executeJavaScript(view.handle(), "1+1", "3");
    ASSERT_TRUE(view.waitForMessage("HandleJavaScriptResult", from));
    EXPECT_EQ(messagesSince(from, view), (std::vector<std::string>{"HandleJavaScriptResult 3,2"}));

    EXPECT_EQ(evaluate(""), "undefined");
    EXPECT_EQ(evaluate("''"), "");
    EXPECT_EQ(evaluate("null"), "null");
    EXPECT_EQ(evaluate("0.1 + 0.2"), "0.30000000000000004");
    EXPECT_EQ(evaluate("[1, 'b,c', null]"), "1,b,c,");
    EXPECT_EQ(evaluate("({})"), "[object Object]");
    EXPECT_EQ(evaluate("document"), "[object HTMLDocument]");
    EXPECT_EQ(evaluate("(function () {})"), "function () {}");
    EXPECT_EQ(evaluate("Promise.resolve(1)"), "[object Promise]");
    EXPECT_EQ(evaluate("'😀 ü \\u2028 \\u2029 \\n'"), "😀 ü \u2028 \u2029 \n");
    EXPECT_EQ(evaluate("'a\\ud800b'"), "a\uFFFDb");
    EXPECT_EQ(evaluate("'before\\0after'"), "before");  // texts to the engine end at a zero byte
    EXPECT_EQ(evaluate("if (true) { 'completion' } else { 'other' }"), "completion");
    EXPECT_EQ(evaluate("var kept = 5; function keptToo() { return kept }"), "undefined");

    EXPECT_EQ(evaluate("throw new Error('reason')"), "Error: reason");
    EXPECT_EQ(evaluate("throw 'text'"), "text");
    EXPECT_TRUE(evaluate("syntax error").starts_with("SyntaxError: "));
    EXPECT_TRUE(errorsSince(from).empty());
}

TEST_F(ScriptsTest, WithoutACallbackIdNothingIsAnswered) {
    loadHtml(view, "<p>page");
    const auto from = recorder().position();
    plugin().WebView_executeJavaScript(view.handle(), "window.ran = 'yes'; let own = 1", "");
    plugin().WebView_executeJavaScript(view.handle(), "throw new Error('unseen')", nullptr);
    EXPECT_EQ(evaluate("ran"), "yes");
    std::size_t answers = 0;
    for (const auto& record : recorder().since(from)) {
        answers += record.method == "HandleJavaScriptResult" ? 1 : 0;
    }
    EXPECT_EQ(answers, 1U);
    EXPECT_TRUE(recorder().waitFor(
        [](const Record& record) {
            return record.kind == Record::Kind::info &&
                   record.payload.find("(HRresult 0x80020101)") != std::string::npos;
        },
        from));
    EXPECT_TRUE(errorsSince(from).empty());
}

TEST_F(ScriptsTest, AScriptBeforeAnyPageIsAnsweredWithTheReason) {
    EXPECT_EQ(evaluate("1+1"), noResult);
    EXPECT_TRUE(
        waitForError("An unexpected exception occurred while executing InvokeScriptAsync. HResult: -"));
    loadHtml(view, "<p>page");
    EXPECT_EQ(evaluate("1+1"), "2");
}

TEST_F(ScriptsTest, FiveHundredScriptsAreAnsweredOnceAndInOrder) {
    loadHtml(view, "<script>var count = 0</script>");
    const auto from = recorder().position();
    std::vector<std::string> expected;
    for (int i = 0; i < 500; ++i) {
        const auto id = std::to_string(i);
        plugin().WebView_executeJavaScript(view.handle(), i % 3 == 2 ? "throw ++count" : "++count",
                                           id.c_str());
        expected.push_back("HandleJavaScriptResult " + id + "," + std::to_string(i + 1));
    }
    EXPECT_TRUE(waitUntil([&] { return messagesSince(from, view).size() >= expected.size(); }));
    EXPECT_EQ(messagesSince(from, view), expected);
}

TEST_F(ScriptsTest, ANavigationAnswersTheScriptsThatItCutsOff) {
    server.page("/next", "<p>next");
    loadHtml(view, "<p>page");
    const auto from = recorder().position();
    for (int i = 0; i < 20; ++i) {
        view.loadUrl(server.url("/next?" + std::to_string(i)));
        for (int j = 0; j < 10; ++j) {
            plugin().WebView_executeJavaScript(view.handle(), "1", std::to_string(i * 10 + j).c_str());
        }
    }
    std::set<std::string> answered;
    EXPECT_TRUE(recorder().waitUntil([&](const auto& records) {
        answered.clear();
        for (auto i = from; i < records.size(); ++i) {
            if (records[i].method == "HandleJavaScriptResult") {
                answered.insert(records[i].payload.substr(0, records[i].payload.find(',')));
            }
        }
        return answered.size() == 200;
    })) << answered.size();
    EXPECT_TRUE(waitForResult(view, "location.search", "?19"));
}
