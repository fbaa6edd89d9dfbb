#include "local_content/LocalUrls.h"

#include <gtest/gtest.h>

namespace {

const std::string host = "ms-local-stream://app_5a617276696b4c6f63616c";
const std::string name = "0123456789abcdef0123456789ABCDEF";

std::string reported(const std::string& url) {
    return local_urls::toReport(url, {{name, "https://example.com/a.pdf"}});
}

}  // namespace

TEST(LocalUrlsTest, TheEngineHearsOfTheUrlsThatItKnows) {
    const std::pair<std::string, std::string> cases[] = {
        {"https://example.com/file/a.html", "https://example.com/file/a.html"},
        {"ms-local-stream:/file/a", "ms-local-stream:/file/a"},
        {host + "/file/C:/data/a%20page.html", "file:///C:/data/a%20page.html"},
        {host + "/file/C:/a/file/b.html", "file:///C:/a/file/b.html"},
        {host + "/file/home/%C3%BC/a.html?q#f", "file:///home/%C3%BC/a.html?q#f"},
        {host + "/other", host + "/other"},
        // Downloaded documents.
        {host + "/pdf?pdf=ms-local-stream%3A%2F%2Fapp%2Ffile%2FC%253A%255C" + name + ".pdf",
         "https://example.com/a.pdf"},
        {host + "/file/" + name + ".pdf", "https://example.com/a.pdf"},
        // Documents on disk, one of them with a name like those.
        {host + "/pdf?pdf=ms-local-stream%3A%2F%2Fapp%2Ffile%2FC%253A%252Fa%2520b%252Fc.pdf",
         "file:///C:/a%20b/c.pdf"},
        {host + "/pdf?pdf=ms-local-stream%3A%2F%2Fapp%2Ffile%2Fhome%252Ffile%252F100%2525%252B%2523.pdf",
         "file:///home/file/100%25+%23.pdf"},
        {host + "/pdf?pdf=ms-local-stream%3A%2F%2Fapp%2Ffile%2Fx%252F" + std::string(32, '0') + ".pdf",
         "file:///x/" + std::string(32, '0') + ".pdf"},
        {host + "/pdf?pdf=https%3A%2F%2Fexample.com%2Ffile%2Fa",
         host + "/pdf?pdf=https%3A%2F%2Fexample.com%2Ffile%2Fa"},
    };
    for (const auto& [url, expected] : cases) {
        EXPECT_EQ(reported(url), expected) << url;
    }
    // However long the page makes it.
    const std::string longUrl = host + "/file/" + std::string(1 << 20, 'x');
    EXPECT_EQ(reported(longUrl), "file:///" + std::string(1 << 20, 'x'));
}

TEST(LocalUrlsTest, ADocumentsNameDependsOnItsUrlAlone) {
    EXPECT_EQ(local_urls::pdfFileName(""), "d41d8cd98f00b204e9800998ecf8427e");
    EXPECT_EQ(local_urls::pdfFileName("http://example.com/ü.pdf"), "1bece94471a9cc4caddda87d52204352");
}
