#include "webview/NavigationRules.h"

#include <gtest/gtest.h>

TEST(NavigationRulesTest, FirstPdfMustStandAtTheEndUnlessTheTextHasThreeCharacters) {
    for (const char* url :
         {"https://a.example/x.pdf", "file:///C:/x.pdf", ".pdf", "ü.pdf", "abc", "pdf", "   "}) {
        EXPECT_TRUE(isPdfUrl(url)) << url;
    }
    for (const char* url :
         {"https://a.example/x.pdf?a=1", "https://a.example/x.pdf#page=2", "x.PDF", "a.pdf/b.pdf", ".pdf.pdf",
          "xpdf", "https://a.example/", ".pdf ", "", "ab", "abcd"}) {
        EXPECT_FALSE(isPdfUrl(url)) << url;
    }
}

TEST(NavigationRulesTest, HeadersAreWholeLinesWithOneSeparator) {
    using namespace std::string_view_literals;
    using Headers = std::vector<std::pair<std::string, std::string>>;
    struct {
        std::string_view text;
        Headers headers;
        std::vector<std::string> invalidLines;
    } const cases[] = {
        {"B: 2\nA: 1\nB: 2", {{"B", "2"}, {"A", "1"}, {"B", "2"}}, {}},
        {" Name :  value ", {{" Name ", " value "}}, {}},
        {"Name: value\r\nOther: x:y", {{"Name", "value\r"}, {"Other", "x:y"}}, {}},
        {": ", {{"", ""}}, {}},
        {"", {}, {""}},
        {"Name:value\nReferer: a: b\nGood: 1\n\n", {{"Good", "1"}}, {"Name:value", "Referer: a: b", "", ""}},
        {"a: : b", {}, {"a: : b"}},
        {"a:: b", {{"a:", "b"}}, {}},
        {"a:\n b", {}, {"a:", " b"}},  // a separator does not reach across lines
        {"a: \0b"sv, {{"a", std::string("\0b", 2)}}, {}},
    };
    for (const auto& [text, headers, invalidLines] : cases) {
        const HeaderLines lines = splitHeaders(text);
        EXPECT_EQ(lines.headers, headers) << text;
        EXPECT_EQ(lines.invalidLines, invalidLines) << text;
    }
}
