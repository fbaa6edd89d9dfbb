#include "LocalStreamTest.h"

#include <winrt/Windows.Security.Cryptography.h>

#include <algorithm>
#include <latch>
#include <thread>

#include "codeOf.h"
#include "element_tree.h"
#include "web_view.h"

using namespace std::chrono_literals;
using namespace std::string_literals;
using namespace winrt::Windows::Storage;
using namespace winrt::Windows::Storage::Streams;

namespace {

struct TestResolver : winrt::implements<TestResolver, winrt::Windows::Web::IUriToStreamResolver> {
    explicit TestResolver(std::shared_ptr<Site> site) : site(std::move(site)) {}

    Site::Stream UriToStreamAsync(winrt::Windows::Foundation::Uri uri) {
        EXPECT_FALSE(runtime::ui_thread::is_current());
        auto const path = winrt::to_string(winrt::Windows::Foundation::Uri::UnescapeComponent(uri.Path()));
        return path == "/nothing" ? nullptr : site->open(path);
    }

    std::shared_ptr<Site> site;
};

Site::Stream contentStream(std::string content) {
    using namespace winrt::Windows::Security::Cryptography;
    InMemoryRandomAccessStream const stream;
    co_await stream.WriteAsync(
        CryptographicBuffer::ConvertStringToBinary(winrt::to_hstring(content), BinaryStringEncoding::Utf8));
    co_return stream.GetInputStreamAt(0);
}

Site::Stream openFile(std::string path) {
    auto const file = co_await StorageFile::GetFileFromPathAsync(winrt::to_hstring(path));
    co_return co_await file.OpenAsync(FileAccessMode::Read);
}

/// A page that comes when the gate opens.
Site::Stream openGated(std::shared_ptr<std::latch> gate, std::shared_ptr<std::atomic<int>> answered) {
    co_await winrt::resume_background();
    gate->wait();
    ++*answered;
    co_return co_await contentStream("<!doctype html>");
}

/// How many descriptors of this process the file is open under.
int openCount(std::string const& file) {
    int count = 0;
    for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        std::error_code error;
        count += std::filesystem::read_symlink(entry.path(), error) == file ? 1 : 0;
    }
    return count;
}

}  // namespace

void Site::page(std::string const& path, std::string const& content) {
    on(path, [content] { return contentStream(content); });
}

void Site::file(std::string const& path, std::string const& file) {
    on(path, [file] { return openFile(file); });
}

void Site::on(std::string const& path, std::function<Stream()> action) {
    std::lock_guard guard(mutex);
    actions[path] = std::move(action);
}

Site::Stream Site::open(std::string path) {
    std::function<Stream()> action;
    {
        std::lock_guard guard(mutex);
        asked.push_back(path);
        auto const found = actions.find(path);
        if (found == actions.end()) {
            throw winrt::hresult_error(HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND), L"There is no such page.");
        }
        action = found->second;
        most = std::max(most, ++underWay);
    }
    struct Leaving {
        Site& site;
        ~Leaving() {
            std::lock_guard guard(site.mutex);
            --site.underWay;
        }
    } const leaving{*this};
    co_return co_await action();
}

std::vector<std::string> Site::requests() const {
    std::lock_guard guard(mutex);
    return asked;
}

int Site::mostAtOnce() const {
    std::lock_guard guard(mutex);
    return most;
}

LocalStreamTest::LocalStreamTest() {
    site->page("/page.html", "<!doctype html><title>local</title>");
    site->page("/other.html", "<!doctype html><title>other</title>");
    server.page("/web", "<title>web</title>");
}

LocalStreamTest::Resolver LocalStreamTest::resolverOf(std::shared_ptr<Site> const& site) {
    return winrt::make<TestResolver>(site);
}

std::string LocalStreamTest::uriOf(std::string const& path, std::wstring const& identifier) {
    return onUIThread([&] {
        return winrt::to_string(
            WebView().BuildLocalStreamUri(identifier, winrt::to_hstring(path)).AbsoluteUri());
    });
}

void LocalStreamTest::go(WebView const& view, std::string const& path, std::wstring const& identifier) {
    onUIThread([&] {
        view.NavigateToLocalStreamUri(view.BuildLocalStreamUri(identifier, winrt::to_hstring(path)),
                                      resolverOf(site));
    });
}

std::string LocalStreamTest::visit(WebView const& view, std::string const& path) {
    return ending(view, [&] { go(view, path); });
}

std::string LocalStreamTest::run(WebView const& view, std::string const& body) {
    auto const started =
        eval(view, winrt::to_hstring("window.outcome = null; (async () => {" + body +
                                     "})().then((value) => { outcome = `${value}` }, (error) => { outcome = "
                                     "`failed: ${error}` }); ''")
                       .c_str());
    EXPECT_EQ(started.code, S_OK) << winrt::to_string(started.text);
    for (auto const limit = std::chrono::steady_clock::now() + 20s; std::chrono::steady_clock::now() < limit;
         std::this_thread::sleep_for(5ms)) {
        auto const outcome = eval(view, L"outcome === null ? '' : 'is ' + outcome").text;
        if (!outcome.empty()) {
            return winrt::to_string(outcome).substr(3);
        }
    }
    return "no outcome";
}

LocalStreamTest::Events LocalStreamTest::eventsOf(WebView const& view) {
    auto events = std::make_shared<std::vector<std::string>>();
    onUIThread([&] {
        view.NavigationStarting([events](auto const&, auto const& arguments) {
            events->push_back("starting " + winrt::to_string(arguments.Uri().AbsoluteUri()));
        });
        view.ContentLoading([events](auto const&, auto const&) { events->push_back("content"); });
        view.DOMContentLoaded([events](auto const&, auto const&) { events->push_back("document"); });
        view.NavigationCompleted([events](auto const&, auto const& arguments) {
            events->push_back(arguments.IsSuccess()
                                  ? "success"
                                  : "failure " +
                                        std::to_string(static_cast<int>(arguments.WebErrorStatus())));
        });
    });
    return events;
}

std::vector<std::string> LocalStreamTest::taken(Events const& events) {
    return onUIThread([&] { return std::exchange(*events, {}); });
}

TEST_F(LocalStreamTest, AddressesNameTheProgramAndTheIdentifier) {
    auto const view = makeView();
    auto const address = uriOf("file/C:/a b/\xC3\xA4%2F.html?x=y#z", L"Zarv\u00e4k");
    EXPECT_TRUE(address.starts_with("ms-local-stream://")) << address;
    EXPECT_TRUE(address.ends_with("_5a617276c3a46b/file/C:/a%20b/%C3%A4%2F.html?x=y#z")) << address;
    EXPECT_EQ(uriOf("/page.html"), uriOf("page.html"));
    onUIThread([&] {
        auto const local = view.BuildLocalStreamUri(L"Test", L"page.html");
        EXPECT_EQ(codeOf([&] { view.Navigate(local); }), E_INVALIDARG);
        EXPECT_EQ(codeOf([&] { view.NavigateToLocalStreamUri(local, nullptr); }), E_INVALIDARG);
        EXPECT_EQ(codeOf([&] { view.NavigateToLocalStreamUri(Uri(L"http://a.example/"), resolverOf(site)); }),
                  E_INVALIDARG);
    });
}

TEST_F(LocalStreamTest, PagesLoadWhatBelongsToThem) {
    site->page("/dir/page.html", "<!doctype html><meta charset=utf-8><title>page</title><body>");
    site->page("/dir/worker.js", "importScripts('import.js'); postMessage(value)");
    site->page("/dir/import.js", "var value = 'worked'");
    site->page("/dir/frame.html", "<!doctype html><script>parent.framed = origin</script>");
    site->page("/dir/image.svg", "<svg xmlns='http://www.w3.org/2000/svg' width='7' height='5'/>");
    site->page("/dir/text", "t\xC3\xA4xt");
    auto const view = makeView();
    ASSERT_EQ(visit(view, "dir/page.html"), "success");
    EXPECT_EQ(run(view, R"(
        const image = new Image();
        image.src = 'image.svg';
        await image.decode();
        const canvas = document.createElement('canvas').getContext('2d');
        canvas.drawImage(image, 0, 0);
        canvas.getImageData(0, 0, 1, 1);
        const worker = new Worker('worker.js');
        const worked = await new Promise((done) => worker.onmessage = (event) => done(event.data));
        const request = new XMLHttpRequest();
        request.open('GET', '../dir/text', false);
        request.send();
        const frame = document.createElement('iframe');
        frame.src = 'frame.html';
        const loaded = new Promise((done) => frame.onload = done);
        document.body.append(frame);
        await loaded;
        return [image.width, worked, request.responseText, await (await fetch('text?x#y')).text(),
                framed === origin && isSecureContext];
    )"),
              "7,worked,t\xC3\xA4xt,t\xC3\xA4xt,true");

    // Several requests are with the resolver at the same time.
    auto const gate = std::make_shared<std::latch>(3);
    for (auto const* path : {"/1", "/2", "/3"}) {
        site->on(path, [gate] {
            gate->arrive_and_wait();
            return contentStream("x");
        });
    }
    EXPECT_EQ(run(view, "await Promise.all(['/1', '/2', '/3'].map((path) => fetch(path))); return 'all'"),
              "all");
    EXPECT_GE(site->mostAtOnce(), 3);
}

TEST_F(LocalStreamTest, TellsContentTypes) {
    site->page("/viewer", "<!DOCTYPE html><title>\xC3\xA4</title>");
    site->page("/text", "t\xC3\xA4xt");
    site->page("/unknown.xyz123", "text");
    for (auto const* name : {"a.html", "a.JS", "a.b.css", "a.wasm", "a.pdf", "a.svg", "a.html.png"}) {
        site->page("/"s + name, "<!doctype html>");
    }
    site->file("/image", folder.write("image", "\x89PNG\r\n\x1a\n\0\0\0\rIHDR"s));
    auto const view = makeView();
    ASSERT_EQ(visit(view, "viewer"), "success");
    EXPECT_EQ(run(view, "return [document.title, document.contentType, document.characterSet]"),
              "\xC3\xA4,text/html,UTF-8");
    EXPECT_EQ(run(view, R"(
        const types = [];
        for (const name of ['text', 'a.html', 'a.JS', 'a.b.css', 'a.wasm', 'a.pdf', 'a.svg', 'a.html.png',
                            'image', 'unknown.xyz123']) {
            types.push((await fetch(name)).headers.get('content-type'));
        }
        return types.join(' ');
    )"),
              "text/plain; charset=utf-8 text/html text/javascript text/css application/wasm "
              "application/pdf image/svg+xml image/png image/png text/plain");
}

TEST_F(LocalStreamTest, AnswersRanges) {
    site->file("/digits", folder.write("digits", "0123456789"));
    site->file("/empty", folder.write("empty", ""));
    auto const view = makeView();
    ASSERT_EQ(visit(view, "page.html"), "success");
    auto const get = [&](std::string const& options, std::string const& path = "digits") {
        return run(view, "const answer = await fetch('" + path + "', {" + options + R"(});
            const header = (name) => answer.headers.get(name) ?? '-';
            return [answer.status, header('content-range'), header('content-length'),
                    await answer.text()].join(' ')
        )");
    };
    auto const range = [&](std::string const& text, std::string const& path = "digits") {
        return get("headers: {Range: 'bytes=" + text + "'}", path);
    };
    EXPECT_EQ(get(""), "200 - 10 0123456789");
    EXPECT_EQ(get("method: 'HEAD'"), "200 - 10 ");
    EXPECT_EQ(range("0-"), "206 bytes 0-9/10 10 0123456789");
    EXPECT_EQ(range("2-4"), "206 bytes 2-4/10 3 234");
    EXPECT_EQ(range("8-100"), "206 bytes 8-9/10 2 89");
    EXPECT_EQ(range("-3"), "206 bytes 7-9/10 3 789");
    EXPECT_EQ(range("-100"), "206 bytes 0-9/10 10 0123456789");
    EXPECT_EQ(range("10-"), "416 bytes */10 0 ");
    EXPECT_EQ(range("0-1,3-4"), "200 - 10 0123456789");
    EXPECT_EQ(range("x"), "200 - 10 0123456789");
    EXPECT_EQ(get("", "empty"), "200 - 0 ");
    EXPECT_EQ(range("0-", "empty"), "416 bytes */0 0 ");
}

TEST_F(LocalStreamTest, FailuresFailTheLoad) {
    site->on("/denied", []() -> Site::Stream {
        throw winrt::hresult_error(E_ACCESSDENIED);
        co_return nullptr;
    });
    site->on("/throws", []() -> Site::Stream {
        throw std::runtime_error("no platform error");
        co_return nullptr;
    });
    site->on("/null", []() -> Site::Stream { co_return nullptr; });
    site->file("/folder", folder.path.string());
    auto const view = makeView();
    ASSERT_EQ(visit(view, "page.html"), "success");
    auto const events = eventsOf(view);
    EXPECT_EQ(visit(view, "missing.html"), "404");
    EXPECT_EQ(taken(events), (std::vector<std::string>{"starting " + uriOf("missing.html"), "failure 404"}));
    EXPECT_EQ(visit(view, "denied"), "403");
    EXPECT_EQ(visit(view, "folder"), "403");
    EXPECT_EQ(visit(view, "throws"), "500");
    EXPECT_EQ(visit(view, "null"), "500");
    EXPECT_EQ(visit(view, "nothing"), "500");
    EXPECT_EQ(run(view, "return document.title"), "local");
    EXPECT_EQ(run(view, R"(
        const script = document.createElement('script');
        script.src = 'missing.js';
        const failed = new Promise((done) => script.onerror = () => done('error'));
        document.head.append(script);
        return [await failed, await fetch('missing').catch((error) => error.name)];
    )"),
              "error,TypeError");
    EXPECT_FALSE(onUIThread([&] { return view.CanGoBack(); }));
}

TEST_F(LocalStreamTest, HistoryAndReloadsWorkAsOnTheWeb) {
    auto const view = makeView();
    auto const events = eventsOf(view);
    auto const whole = [](std::string const& uri) {
        return std::vector<std::string>{"starting " + uri, "content", "document", "success"};
    };
    auto const title = [&] { return winrt::to_string(eval(view, L"document.title").text); };
    auto const local = uriOf("page.html?q=a%20b#top");
    ASSERT_EQ(visit(view, "page.html?q=a b#top"), "success");
    EXPECT_EQ(taken(events), whole(local));
    EXPECT_EQ(run(view, "return location.href"), local);
    load(view, server.url("/web"));
    EXPECT_EQ(taken(events), whole(server.url("/web")));

    EXPECT_EQ(ending(view, [&] { view.GoBack(); }), "success");
    EXPECT_EQ(taken(events), whole(local));
    EXPECT_EQ(title(), "local");
    auto const before = site->requests().size();
    site->page("/page.html", "<!doctype html><title>changed</title>");
    EXPECT_EQ(ending(view, [&] { view.Refresh(); }), "success");
    EXPECT_EQ(taken(events), whole(local));
    EXPECT_EQ(title(), "changed");
    EXPECT_EQ(site->requests().size(), before + 1);

    EXPECT_EQ(ending(view, [&] { view.GoForward(); }), "success");
    EXPECT_EQ(title(), "web");
    EXPECT_EQ(taken(events), whole(server.url("/web")));
    EXPECT_EQ(ending(view, [&] { view.GoBack(); }), "success");
    EXPECT_EQ(taken(events), whole(local));

    // The page's own ways.
    for (auto const* way : {"location = 'other.html'", "location.reload()", "location.replace('page.html')",
                            R"(const form = document.createElement('form'); form.action = 'other.html';
             document.body.append(form); form.submit())",
                            "history.back()"}) {
        EXPECT_EQ(ending(view, [&] { view.InvokeScriptAsync(L"eval", {winrt::to_hstring(way)}); }), "success")
            << way;
        EXPECT_TRUE(taken(events).at(0).starts_with("starting " + uriOf(""))) << way;
    }
    EXPECT_EQ(ending(view,
                     [&] {
                         view.InvokeScriptAsync(
                             L"eval", {winrt::to_hstring("location = '" + server.url("/web") + "'")});
                     }),
              "success");
    EXPECT_EQ(title(), "web");
    EXPECT_EQ(ending(view, [&] { view.InvokeScriptAsync(L"eval", {L"history.back()"}); }), "success");
    EXPECT_NE(title(), "web");
}

TEST_F(LocalStreamTest, LargeFilesAreStreamed) {
    constexpr uintmax_t size = 3ull << 30;
    auto const large = folder.write("large.bin", "");
    std::filesystem::resize_file(large, size);
    site->file("/large.bin", large);
    auto const view = makeView();
    ASSERT_EQ(visit(view, "page.html"), "success");
    EXPECT_EQ(run(view, R"(
        const answer = await fetch('large.bin');
        const reader = answer.body.getReader();
        let count = 0;
        while (count < 20000000) {
            count += (await reader.read()).value.length;
        }
        await reader.cancel();
        return answer.headers.get('content-length');
    )"),
              std::to_string(size));
    EXPECT_TRUE(comesTrue([&] { return openCount(large) == 0; })) << "it is still read";
    EXPECT_EQ(run(view, R"(
        const answer = await fetch('large.bin', {headers: {Range: 'bytes=3221225000-'}});
        return [answer.status, (await answer.arrayBuffer()).byteLength];
    )"),
              "206,472");

    // Nobody reads on for a page that has gone.
    auto const startReading = [&](WebView const& reader) {
        EXPECT_EQ(run(reader,
                      "window.body = (await fetch('large.bin')).body.getReader();"
                      "return (await body.read()).value.length > 0"),
                  "true");
        EXPECT_GT(openCount(large), 0);
    };
    startReading(view);
    load(view, server.url("/web"));
    EXPECT_TRUE(comesTrue([&] { return openCount(large) == 0; })) << "after a navigation";
    auto other = makeView();
    ASSERT_EQ(visit(other, "page.html"), "success");
    startReading(other);
    other = nullptr;
    EXPECT_TRUE(comesTrue([&] { return openCount(large) == 0; })) << "after the view's end";
}

TEST_F(LocalStreamTest, SlowResolversCanBeLeftAlone) {
    auto const gate = std::make_shared<std::latch>(1);
    auto const answered = std::make_shared<std::atomic<int>>(0);
    site->on("/slow", [gate, answered] { return openGated(gate, answered); });
    auto const view = makeView();
    auto const waits = [&] { return std::ranges::count(site->requests(), "/slow"); };
    EXPECT_EQ(ending(view,
                     [&] {
                         go(view, "slow");
                         view.Stop();
                     }),
              "16");
    auto const before = waits();
    go(view, "slow");
    ASSERT_TRUE(comesTrue([&] { return waits() == before + 1; }));
    EXPECT_EQ(ending(view, [&] { view.Stop(); }), "16");
    auto gone = makeView();
    go(gone, "slow");
    ASSERT_TRUE(comesTrue([&] { return waits() == before + 2; }));
    gone = nullptr;
    onUIThread([] {});
    ASSERT_EQ(visit(view, "page.html"), "success") << "while others wait";
    gate->count_down();
    ASSERT_TRUE(comesTrue([&] { return *answered == before + 2; }));
    EXPECT_EQ(visit(view, "slow"), "success");
    EXPECT_EQ(ending(view, [&] { view.Refresh(); }), "success");
}
