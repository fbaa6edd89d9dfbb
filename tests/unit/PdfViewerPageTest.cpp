#include "local_content/PdfViewerPage.h"

#include <gtest/gtest.h>

#include "resources/PdfViewer.h"

namespace {

/// The page's text before and after the document's URL.
std::pair<std::string, std::string> frame() {
    constexpr std::string_view placeholder = "$PDF_URL_PLACEHOLDER";
    std::string page;
    for (const std::string_view piece : pdfViewerPieces) {
        EXPECT_FALSE(piece.empty());
        page += piece;
    }
    const auto at = page.find(placeholder);
    EXPECT_NE(at, std::string::npos);
    return {page.substr(0, at), page.substr(at + placeholder.size())};
}

std::string urlInPage(std::string_view url) {
    const auto [before, after] = frame();
    const std::string page = pdfViewerPage(url);
    EXPECT_TRUE(page.starts_with(before) && page.ends_with(after)) << url;
    return page.substr(before.size(), page.size() - before.size() - after.size());
}

}  // namespace

TEST(PdfViewerPageTest, TheUrlStandsInTheWholePage) {
    const auto [before, after] = frame();
    EXPECT_TRUE(before.starts_with("<!doctype html>"));
    EXPECT_TRUE(after.ends_with("</html>\n"));
    EXPECT_EQ(after.find("$PDF_URL_PLACEHOLDER"), std::string::npos);
    for (const auto* url :
         {"ms-local-stream://app_7a/file/C%3A%5Cdocs%5Ca%20b.pdf?x=1&y=[2]#page=(3);'$~+*!,@", "",
          "a$PDF_URL_PLACEHOLDER$PDF_URL_PLACEHOLDER"}) {
        EXPECT_EQ(urlInPage(url), url);
    }
}

TEST(PdfViewerPageTest, WhatNoUrlHoldsIsEncoded) {
    EXPECT_EQ(urlInPage("</script><!--"), "%3C/script%3E%3C!--");
    EXPECT_EQ(urlInPage("\"\\`{|}^ \r\n\t\x7f"), "%22%5C%60%7B%7C%7D%5E%20%0D%0A%09%7F");
    EXPECT_EQ(urlInPage("\u2028ä\xff"), "%E2%80%A8%C3%A4%FF");
    EXPECT_EQ(urlInPage(std::string_view{"a\0b", 3}), "a%00b");
}
