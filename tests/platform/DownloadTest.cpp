#include <winrt/Windows.Networking.BackgroundTransfer.h>

#include "PageTest.h"
#include "await.h"
#include "codeOf.h"
#include "downloads.h"
#include "support/TemporaryFolder.h"
#include "user_agent.h"

using namespace std::chrono_literals;
using namespace winrt::Windows::Networking::BackgroundTransfer;
using winrt::Windows::Foundation::Uri;
using winrt::Windows::Storage::StorageFile;

class DownloadTest : public testing::Test {
  protected:
    ~DownloadTest() override { runtime::download_patience_s = usualPatience; }

    DownloadOperation prepare(std::string const& url) {
        auto const path = folder.write("file", "what was there before, and longer than what comes");
        return BackgroundDownloader().CreateDownload(
            Uri(winrt::to_hstring(url)), await(StorageFile::GetFileFromPathAsync(winrt::to_hstring(path))));
    }
    std::string content() const { return readFile(folder / "file"); }
    int32_t failure(DownloadOperation const& download) {
        return codeOf([&] { await(download.StartAsync()); });
    }

    unsigned const usualPatience = runtime::download_patience_s;
    TemporaryFolder folder;
    TestServer server;
};

TEST_F(DownloadTest, SavesWhatTheServerSends) {
    std::string large;
    for (int i = 0; i < 300'000; ++i) {
        large += std::to_string(i) + '\0';
    }
    server.content("/large", "application/pdf", large);
    server.redirect("/moved", server.otherOriginUrl("/large"));
    server.on("/empty", [](auto const&, auto& response) { response.status = 204; });
    auto const download = prepare(server.url("/moved"));
    EXPECT_EQ(download.GetResponseInformation(), nullptr);
    EXPECT_EQ(await(download.StartAsync()), download);
    EXPECT_EQ(download.GetResponseInformation().StatusCode(), 200u);
    EXPECT_TRUE(content() == large);
    EXPECT_EQ(server.requests("/large").at(0).header("User-Agent"), runtime::effective_user_agent());
    EXPECT_EQ(codeOf([&] { download.StartAsync(); }), E_ILLEGAL_METHOD_CALL);

    auto const empty = prepare(server.url("/empty"));
    await(empty.StartAsync());
    EXPECT_EQ(empty.GetResponseInformation().StatusCode(), 204u);
    EXPECT_EQ(content(), "");
}

TEST_F(DownloadTest, TellsItsFailuresApart) {
    TestServer secure(TestServer::Scheme::https);
    secure.page("/", "never");
    server.page("/missing", "the reason", 404);
    server.redirect("/round", "/round");
    server.redirect("/out", "file://" + folder / "file");
    server.on("/cut", [](auto const&, auto& response) {
        response.set_content_provider(1000, "text/plain", [](size_t offset, size_t, auto& sink) {
            return offset == 0 && sink.write("begin", 5);
        });
    });
    auto const missing = prepare(server.url("/missing"));
    EXPECT_EQ(failure(missing), static_cast<int32_t>(0x80190194));
    EXPECT_EQ(missing.GetResponseInformation().StatusCode(), 404u);
    EXPECT_TRUE(content().starts_with("what was there")) << "an error page is no download";

    EXPECT_EQ(failure(prepare(secure.url("/"))), WININET_E_INVALID_CA);
    EXPECT_EQ(failure(prepare("http://127.0.0.1:" + std::to_string(closedPort()) + "/")),
              WININET_E_CANNOT_CONNECT);
    EXPECT_EQ(failure(prepare("http://name.invalid/")), WININET_E_NAME_NOT_RESOLVED);
    EXPECT_EQ(failure(prepare(server.url("/round"))), WININET_E_REDIRECT_FAILED);
    EXPECT_LT(failure(prepare(server.url("/out"))), 0);
    EXPECT_EQ(failure(prepare(server.url("/cut"))), WININET_E_CONNECTION_ABORTED);
    EXPECT_LT(content().size(), 1000u);
    for (auto const* url : {"ftp://a.example/x.pdf", "file:///etc/passwd", "data:,x"}) {
        EXPECT_EQ(codeOf([&] { prepare(url); }), E_INVALIDARG) << url;
    }
    auto const unwritable = prepare(server.url("/missing"));
    server.page("/missing", "found");
    std::filesystem::remove(folder / "file");
    std::filesystem::create_directory(folder / "file");
    EXPECT_EQ(failure(unwritable), E_ACCESSDENIED);
    EXPECT_EQ(unwritable.GetResponseInformation().StatusCode(), 200u);
}

TEST_F(DownloadTest, DoesNotWaitForASilentServer) {
    runtime::download_patience_s = 1;
    server.stalledPage("/silent");
    server.on("/stops", [&](auto const&, auto& response) {
        response.set_content_provider("text/plain", [](size_t offset, auto& sink) {
            // Slower than the bound as a whole, but never silent that long; then it stops.
            std::this_thread::sleep_for(offset < 3 ? 500ms : 3s);
            return sink.write("x", 1);
        });
    });
    EXPECT_EQ(failure(prepare(server.url("/silent"))), WININET_E_TIMEOUT);
    EXPECT_EQ(failure(prepare(server.url("/stops"))), WININET_E_TIMEOUT);
    EXPECT_EQ(content(), "xxx");
}

TEST_F(DownloadTest, CanBeGivenUp) {
    auto const cancelled = HRESULT_FROM_WIN32(ERROR_CANCELLED);
    server.stalledPage("/silent");
    server.on("/endless", [](auto const&, auto& response) {
        response.set_content_provider("text/plain", [](size_t, auto& sink) {
            return sink.write(std::string(1 << 16, 'x').data(), 1 << 16);
        });
    });
    for (auto const* path : {"/silent", "/endless"}) {
        auto const operation = prepare(server.url(path)).StartAsync();
        ASSERT_TRUE(server.waitForRequest(path));
        std::jthread const other([&] {
            std::this_thread::sleep_for(50ms);
            operation.Cancel();
        });
        EXPECT_EQ(codeOf([&] { await(operation); }), cancelled) << path;
        operation.Cancel();
        auto const size = content().size();
        std::this_thread::sleep_for(50ms);
        EXPECT_EQ(content().size(), size) << "it still writes after its end";
    }
    auto const operation = prepare(server.url("/endless")).StartAsync();
    operation.Cancel();
    EXPECT_EQ(codeOf([&] { await(operation); }), cancelled);
}

// More downloads than the pool has threads: whoever waits for a server holds up nobody else.
TEST_F(DownloadTest, LeavesThePoolFree) {
    server.stalledPage("/silent");
    auto const file = await(StorageFile::GetFileFromPathAsync(winrt::to_hstring(folder.write("many", ""))));
    std::vector<decltype(std::declval<DownloadOperation>().StartAsync())> operations;
    for (int i = 0; i < 10; ++i) {
        operations.push_back(BackgroundDownloader()
                                 .CreateDownload(Uri(winrt::to_hstring(server.url("/silent"))), file)
                                 .StartAsync());
    }
    ASSERT_TRUE(server.waitForRequest("/silent"));
    EXPECT_EQ(winrt::to_string(file.Path()), folder / "many");
    await(file.OpenAsync(winrt::Windows::Storage::FileAccessMode::Read));
    for (auto const& operation : operations) {
        operation.Cancel();
    }
    for (auto const& operation : operations) {
        EXPECT_EQ(codeOf([&] { await(operation); }), HRESULT_FROM_WIN32(ERROR_CANCELLED));
    }
}
