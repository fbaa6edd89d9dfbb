// PDF documents: from the network or from disk into the viewer, and what the engine hears of it.

#include <algorithm>
#include <cstdlib>
#include <regex>
#include <sstream>

#include "support/EngineTest.h"
#include "support/Pdf.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace std::chrono_literals;

class PdfTest : public EngineTest {
  protected:
    /// Serves a document, or what is called one.
    void servePdf(const std::string& path, const std::string& content, int status = 200) {
        server.content(path, "application/pdf", content, status);
    }

    /// Sends the first half of a document, and then nothing more while the test lasts or `holding` is true.
    void serveHalf(const std::string& path, const std::string& content) {
        server.on(path, [this, content](const httplib::Request&, httplib::Response& response) {
            response.set_content_provider(
                content.size(), "application/pdf",
                [this, content](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                    if (offset == 0) {
                        return sink.write(content.data(), content.size() / 2);
                    }
                    const auto limit = std::chrono::steady_clock::now() + 20s;
                    while (holding && std::chrono::steady_clock::now() < limit) {
                        std::this_thread::sleep_for(5ms);
                    }
                    return false;
                });
        });
    }

    ~PdfTest() override { holding = false; }

    std::string evaluate(const std::string& script) { return view.evaluate(script).value_or("no answer"); }

    /// Clicks and types as the engine's user does.
    void clickOn(const std::string& id) {
        std::int32_t x = 0;
        std::int32_t y = 0;
        std::istringstream(
            evaluate("(({ x, y, width, height }) => Math.round(x + width / 2) + ' ' + "
                     "Math.round(y + height / 2))(document.getElementById('" +
                     id + "').getBoundingClientRect())")) >>
            x >> y;
        plugin().WebView_pointerDown(view.handle(), x, y, 0, 1);
        plugin().WebView_pointerUp(view.handle(), x, y, 0, 1);
    }
    void type(const std::string& text) {
        for (const char character : text) {
            plugin().WebView_sendKey(view.handle(), std::string(1, character).c_str());
        }
        plugin().WebView_sendKey(view.handle(), "Enter");
    }

    /// Waits until the viewer shows this text of a document.
    testing::AssertionResult showsText(const std::string& text) {
        const std::string script =
            "Array.from(document.querySelectorAll('.textLayer'), (layer) => "
            "layer.textContent).join(' ').includes('" +
            text + "')";
        const bool shows = waitForResult(view, script, "true");
        return (shows ? testing::AssertionSuccess() : testing::AssertionFailure())
               << evaluate("document.body.innerText");
    }

    /// The downloaded documents, whole or not, by their names.
    static std::vector<std::filesystem::path> downloads() {
        static const std::regex name("[0-9a-f]{32}\\.pdf.*");
        std::vector<std::filesystem::path> found;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(std::getenv("XDG_CACHE_HOME"))) {
            if (std::regex_match(entry.path().filename().string(), name)) {
                found.push_back(entry.path());
            }
        }
        return found;
    }
    static void removeDownloads() {
        for (const auto& path : downloads()) {
            std::filesystem::remove(path);
        }
    }

    void SetUp() override { removeDownloads(); }

    std::atomic<bool> holding = true;
    TemporaryFolder folder;
    View view{engine, {640, 480}};
};

const std::string downloadFailed = "An error occurred while trying to download the PDF from ";

}  // namespace

TEST_F(PdfTest, ADocumentFromTheNetworkIsShownUnderItsUrl) {
    const auto document = makePdf(3);
    servePdf("/redirected.pdf", document);
    server.redirect("/some.pdf", "/redirected.pdf");
    load(view, server.url("/some.pdf"));
    EXPECT_EQ(messagesSince(0, view),
              (std::vector<std::string>{urlChanged(server.url("/some.pdf")), "HandleLoadStarted",
                                        "HandleLoadProgressUpdate 0.33", "HandleLoadProgressUpdate 0.66",
                                        "HandleLoadFinished"}));
    EXPECT_TRUE(showsText("Page 1 of the test"));
    // The red part of the page.
    EXPECT_TRUE(waitForPixels(view, [](const Image& image) {
        const auto pixel = image.at(320, 440);
        return pixel[2] > 200 && pixel[1] < 60 && pixel[0] < 60;
    }));
    const auto files = downloads();
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(readFile(files[0]), document);

    // Again, with another content.
    servePdf("/redirected.pdf", makePdf(1));
    load(view, server.url("/some.pdf"));
    EXPECT_TRUE(showsText("Page 1 of the test"));
    EXPECT_EQ(downloads(), files);
    EXPECT_EQ(readFile(files[0]), makePdf(1));
}

TEST_F(PdfTest, ALinkInAPageLeadsToTheViewer) {
    servePdf("/linked.pdf", makePdf(2));
    server.page("/page", "<a id=link href=/linked.pdf>document</a><title>page</title>");
    load(view, server.url("/page"));
    const auto from = recorder().position();
    evaluate("document.getElementById('link').click(); ''");
    ASSERT_TRUE(view.waitForMessage("HandleLoadFinished", from));
    const auto messages = messagesSince(from, view);
    EXPECT_EQ(std::ranges::count(messages, urlChanged(server.url("/linked.pdf"))), 1);
    EXPECT_TRUE(showsText("Page 2 of the test"));
    plugin().WebView_goBack(view.handle());
    EXPECT_TRUE(waitForResult(view, "document.title", "page"));
}

TEST_F(PdfTest, ADocumentOnDiskIsShownWithoutACopy) {
    const auto file = folder.write("a b%20c+d#e 日/100% 'q'.pdf", makePdf(1));
    load(view, fileUrl(file));
    EXPECT_TRUE(showsText("Page 1 of the test"));
    EXPECT_TRUE(downloads().empty());
    EXPECT_EQ(messagesSince(0, view).front(), urlChanged(fileUrl(file)));
}

TEST_F(PdfTest, LongLargeAndProtectedDocumentsOpen) {
    load(view, fileUrl(folder.write("long.pdf", makePdf(300))));
    EXPECT_TRUE(showsText("Page 1 of the test"));
    clickOn("findToggle");
    ASSERT_TRUE(waitForResult(view, "document.activeElement.id", "findText"));
    type("Page 299 of the test");
    EXPECT_TRUE(showsText("Page 299 of the test"));
    EXPECT_TRUE(waitForResult(view, "document.getElementById('pageNumber').value", "299"));

    servePdf("/large.pdf", makePdf(3, 50'000'000));
    load(view, server.url("/large.pdf"));
    EXPECT_TRUE(showsText("Page 1 of the test"));

    load(view, fileUrl(std::filesystem::path(DOCUMENT_FOLDER) / "protected.pdf"));
    ASSERT_TRUE(waitForResult(view, "document.activeElement.id", "password"));
    type("sesame");
    EXPECT_TRUE(showsText("Chapter 1"));
}

TEST_F(PdfTest, AFailedDownloadIsAFailedLoadAndLeavesNothing) {
    servePdf("/missing.pdf", "not here", 404);
    server.on("/cut.pdf", [](const httplib::Request&, httplib::Response& response) {
        response.set_content_provider(1000, "application/pdf",
                                      [](std::size_t offset, std::size_t, httplib::DataSink& sink) {
                                          return offset == 0 && sink.write("%PDF-1.7", 8);
                                      });
    });
    server.redirect("/loop.pdf", "/loop.pdf");
    const std::string refused = "http://127.0.0.1:" + std::to_string(closedPort()) + "/a.pdf";
    const std::pair<std::string, std::string> cases[] = {
        {server.url("/missing.pdf"),
         "The download of the PDF from " + server.url("/missing.pdf") + " failed with status code: 404"},
        {server.url("/cut.pdf"), downloadFailed + server.url("/cut.pdf") + ". Error message: "},
        {server.url("/loop.pdf"), ""},
        {refused, downloadFailed + refused + ". Error message: "},
        {"ftp://127.0.0.1/a.pdf", "Cannot load PDF URL with unsupported scheme: ftp://127.0.0.1/a.pdf"},
    };
    for (const auto& [url, reason] : cases) {
        SCOPED_TRACE(url);
        const auto from = recorder().position();
        view.loadUrl(url);
        const auto result = view.waitForLoad();
        EXPECT_EQ(result.outcome, LoadResult::Outcome::failed);
        EXPECT_TRUE(result.reason.starts_with(reason)) << result.reason;
        EXPECT_EQ(errorsSince(from), std::vector{result.reason});
        EXPECT_EQ(messagesSince(from, view), std::vector{"HandleLoadFailed " + result.reason});
        EXPECT_TRUE(downloads().empty());
    }
}

TEST_F(PdfTest, AStatusOtherThan200IsLoggedAndShown) {
    servePdf("/made.pdf", makePdf(1), 201);
    load(view, server.url("/made.pdf"));
    EXPECT_TRUE(showsText("Page 1 of the test"));
    EXPECT_TRUE(waitForError("The download of the PDF from " + server.url("/made.pdf") +
                             " finished with status code: 201"));
}

TEST_F(PdfTest, WhatIsNoDocumentGivesTheViewersMessage) {
    const auto whole = makePdf(5);
    for (const auto& content :
         {std::string("<p>not a PDF"), std::string(), whole.substr(0, whole.size() / 3)}) {
        servePdf("/broken.pdf", content);
        load(view, server.url("/broken.pdf"));
        EXPECT_TRUE(waitForResult(
            view, "/damaged|invalid|corrupt|could ?n.t|cannot|empty|Page 1/i.test(document.body.innerText)",
            "true"))
            << evaluate("document.body.innerText");
    }
    loadHtml(view, "<title>after</title>");
    EXPECT_EQ(evaluate("document.title"), "after");
}

TEST_F(PdfTest, ADownloadEndsWithWhatEndsALoad) {
    serveHalf("/stalled.pdf", makePdf(300));
    server.page("/page", "<title>page</title>");
    const auto url = server.url("/stalled.pdf");
    const auto begin = [&] {
        const auto earlier = server.requests("/stalled.pdf").size();
        view.loadUrl(url);
        return waitUntil(
            [&] { return server.requests("/stalled.pdf").size() > earlier && !downloads().empty(); });
    };
    // Stopped: the load has failed.
    ASSERT_TRUE(begin());
    plugin().WebView_stopLoad(view.handle());
    auto result = view.waitForLoad();
    EXPECT_EQ(result.outcome, LoadResult::Outcome::failed);
    EXPECT_TRUE(result.reason.starts_with(downloadFailed + url)) << result.reason;
    // Replaced: only the other page is heard of.
    ASSERT_TRUE(begin());
    const auto from = recorder().position();
    load(view, server.url("/page"));
    EXPECT_TRUE(waitUntil([] { return downloads().empty(); }));
    EXPECT_EQ(messagesSince(from, view).front(), urlChanged(server.url("/page")));
    EXPECT_EQ(messagesSince(from, view).size(), 5U);
    EXPECT_EQ(evaluate("document.title"), "page");
    // Gone with its view, which another one has not.
    ASSERT_TRUE(begin());
    {
        View other(engine, {320, 240});
        other.loadUrl(url);
        ASSERT_TRUE(waitUntil([] { return downloads().size() == 2; }));
    }
    EXPECT_TRUE(waitUntil([] { return downloads().size() == 1; }));
}

TEST_F(PdfTest, TwoLoadsOfADocumentEndWithOneWholeFile) {
    const auto document = makePdf(100);
    server.on("/slow.pdf", [&](const httplib::Request&, httplib::Response& response) {
        response.set_content_provider(document.size(), "application/pdf",
                                      [&](std::size_t offset, std::size_t length, httplib::DataSink& sink) {
                                          std::this_thread::sleep_for(20ms);
                                          return sink.write(
                                              document.data() + offset,
                                              std::min<std::size_t>(length, document.size() / 8));
                                      });
    });
    View other(engine, {640, 480});
    view.loadUrl(server.url("/slow.pdf"));
    other.loadUrl(server.url("/slow.pdf"));
    EXPECT_TRUE(view.waitForLoad());
    EXPECT_TRUE(other.waitForLoad());
    const auto files = downloads();
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(readFile(files[0]), document);
    EXPECT_TRUE(showsText("Page 1 of the test"));
}
