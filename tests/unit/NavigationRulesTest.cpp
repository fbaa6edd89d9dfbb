#include "webview/NavigationRules.h"

#include <gtest/gtest.h>

TEST(NavigationRulesTest, FirstPdfMustStandAtTheEnd) {
    for (const char* url : {"https://a.example/x.pdf", "file:///C:/x.pdf", ".pdf", "x.pdf", "ü.pdf"}) {
        EXPECT_TRUE(isPdfUrl(url)) << url;
    }
    for (const char* url : {"https://a.example/x.pdf?a=1", "https://a.example/x.pdf#page=2", "x.PDF", "x.Pdf",
                            "a.pdf/b.pdf", ".pdf.pdf", "xpdf", "https://a.example/", ".pdf ", "pdf/"}) {
        EXPECT_FALSE(isPdfUrl(url)) << url;
    }
}

TEST(NavigationRulesTest, TextOfThreeCharactersCountsAsPdf) {
    for (const char* text : {"abc", "pdf", ".pd", "   ", "\xE2\x82\xAC"}) {
        EXPECT_TRUE(isPdfUrl(text)) << text;
    }
    for (const char* text : {"", "a", "ab", "abcd", "\xC3\xBC"}) {
        EXPECT_FALSE(isPdfUrl(text)) << text;
    }
}

namespace {

using Headers = std::vector<std::pair<std::string, std::string>>;
using Lines = std::vector<std::string>;

void expectSplit(std::string_view text, const Headers& headers, const Lines& invalidLines) {
    const HeaderLines lines = splitHeaders(text);
    EXPECT_EQ(lines.headers, headers) << text;
    EXPECT_EQ(lines.invalidLines, invalidLines) << text;
}

}  // namespace

TEST(NavigationRulesTest, HeadersKeepTheirOrderAndBlanks) {
    expectSplit("B: 2\nA: 1\nB: 2", {{"B", "2"}, {"A", "1"}, {"B", "2"}}, {});
    expectSplit(" Name :  value ",
                {{" Name ",
                  " "
                  "value "}},
                {});
    expectSplit("Name: value\r\nOther: x:y", {{"Name", "value\r"}, {"Other", "x:y"}}, {});
    expectSplit(": value", {{"", "value"}}, {});
    expectSplit("Name: ", {{"Name", ""}}, {});
    expectSplit(": ", {{"", ""}}, {});
}

TEST(NavigationRulesTest, OtherLinesAreReportedWhole) {
    expectSplit("", {}, {""});
    expectSplit("Name: value\n", {{"Name", "value"}}, {""});
    expectSplit("Name:value\nReferer: a: b\nGood: 1\n\n", {{"Good", "1"}},
                {"Name:value", "Referer: a: b", "", ""});
    expectSplit("a: : b", {}, {"a: : b"});
    expectSplit("a:: b", {{"a:", "b"}}, {});
    // A separator does not reach across lines.
    expectSplit("a:\n b", {}, {"a:", " b"});
    using namespace std::string_view_literals;
    expectSplit("a: \0b"sv, {{"a", std::string("\0b", 2)}}, {});
}

TEST(NavigationRulesTest, UrlGoesIntoTheMessageAsItIs) {
    EXPECT_EQ(
        urlChangedMessage("https://a.example/?q=ü"),
        "{ \"type\": \"zarvik.webview.urlChanged\", \"urlAction\": { \"Type\": \"LOAD\", \"Title\": \"\", "
        "\"Url\": \"https://a.example/?q=ü\" }}");
    EXPECT_EQ(
        urlChangedMessage("a\"b\\c\n"),
        "{ \"type\": \"zarvik.webview.urlChanged\", \"urlAction\": { \"Type\": \"LOAD\", \"Title\": \"\", "
        "\"Url\": \"a\"b\\c\n\" }}");
}
