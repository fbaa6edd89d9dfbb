// Pages that do their worst: the engine keeps its pace and its memory, other views go on, and so does the
// view itself once it shows another page.

#include <algorithm>
#include <charconv>

#include "support/EngineTest.h"
#include "support/Memory.h"
#include "support/TestPages.h"

namespace {

using namespace std::chrono_literals;

class HostilePagesTest : public EngineTest {
  protected:
    void SetUp() override { loadHtml(bystander, patternPage); }

    /// Other views, the engine's turns and this view's next page are as if nothing had been.
    void expectUnharmed() {
        EXPECT_EQ(bystander.evaluate("1 + 1"), "2");
        engine.takeTurn();
        server.page("/good", patternPage);
        // A page may navigate at the same moment, and then it is that navigation which counts.
        EXPECT_TRUE(waitUntil([this] {
            view.loadUrl(server.url("/good"));
            return view.waitForLoad().outcome == LoadResult::Outcome::finished;
        }));
        EXPECT_TRUE(showsPattern(view, 64, 48));
        EXPECT_EQ(view.evaluate("1 + 1"), "2");
        EXPECT_TRUE(showsPattern(bystander, 64, 48));
    }

    View bystander{engine, {64, 48}};
    View view{engine, {64, 48}};
};

struct Attack {
    const char* name;
    std::string page;
};

class HostileScriptsTest : public HostilePagesTest, public testing::WithParamInterface<Attack> {};

// Each calls `attacking()` when it has begun, and never ends.
const Attack attacks[] = {
    {"Dialogs", "<script>attacking(); for (;;) { alert('a'); confirm('b'); prompt('c'); print(); }</script>"},
    {"DialogOnLeaving",
     "<script>onbeforeunload = (event) => { event.preventDefault(); return 'stay' };"
     "onunload = () => { for (const end = Date.now() + 500; Date.now() < end;); }; attacking()</script>"},
    {"Windows",
     "<script>setInterval(() => { for (let i = 0; i < 20; i++) { open('/good'); open('about:blank', "
     "'_blank'); "
     "open('javascript:alert(1)') } }, 1); attacking()</script>"},
    {"Downloads",
     "<a id=link download=x href='data:application/octet-stream,x'></a>"
     "<iframe id=frame></iframe><script>setInterval(() => { link.click(); frame.src = '/file' }, 5); "
     "attacking()</script>"},
    {"PermissionRequests",
     "<script>setInterval(() => { navigator.geolocation.getCurrentPosition(() => {}, () => {});"
     "navigator.mediaDevices?.getUserMedia({audio: true, video: true}).catch(() => {});"
     "window.Notification?.requestPermission(); document.documentElement.requestPointerLock?.();"
     "document.documentElement.requestFullscreen?.().catch(() => {}) }, 20); attacking()</script>"},
    {"History",
     "<script>setInterval(() => { for (let i = 0; i < 50; i++) { try { "
     "history.pushState('x'.repeat(1000), '', '#' + Math.random()) } catch {} } "
     "history.go(-1) }, 1); attacking()</script>"},
    {"Navigations",
     "<script>setInterval(() => { location = '/attack?' + Math.random() }, 10); attacking()</script>"},
    {"FrameNavigations",
     "<iframe id=frame></iframe><script>setInterval(() => { frame.src = '/attack?' + Math.random() }, 10); "
     "attacking()</script>"},
    {"LargeDocument",
     "<body><script>const add = () => { let html = ''; for (let i = 0; i < 20000; i++) { "
     "html += '<div><b>' + i + '</b></div>' } document.body.insertAdjacentHTML('beforeend', html); "
     "if (document.all.length < 400000) { setTimeout(add) } }; add(); attacking()</script>"},
    {"LargeCanvases",
     "<script>const kept = []; setInterval(() => { const canvas = document.createElement('canvas'); "
     "canvas.width = 4000; canvas.height = 4000; canvas.getContext('2d')?.fillRect(0, 0, 4000, 4000); "
     "if (kept.length < 8) { kept.push(canvas) } }, 20); attacking()</script>"},
    {"Fonts",
     "<body><script>setInterval(() => { const face = new FontFace('f' + Math.random(), "
     "Uint8Array.from({length: 5000}, () => Math.random() * 256)); face.load().catch(() => {}); "
     "document.fonts.add(face); document.body.style.font = Math.random() * 3000 + 'px f' }, 5); "
     "attacking()</script>"},
    {"DeepFrames",
     "<body><script>let inner = document; for (let i = 0; i < 60; i++) { const frame = "
     "inner.createElement('iframe'); inner.body.append(frame); inner = frame.contentDocument ?? inner; } "
     "attacking()</script>"},
    {"FramesOfItself",
     "<body><iframe src='/attack?a'></iframe><iframe src='/attack?b'></iframe><script>attacking()</script>"},
    {"ServiceWorker",
     "<script>navigator.serviceWorker?.register('/worker.js', {scope: '/attack'}).then(() => { "
     "setInterval(() => fetch('/x'), 5) "
     "}); "
     "attacking()</script>"},
    {"Workers",
     "<script>const source = URL.createObjectURL(new Blob(['for (;;);'])); for (let i = 0; i < 8; i++) { "
     "new Worker(source) } attacking()</script>"},
    {"Recursion", "<script>attacking(); const f = () => { try { f() } finally { f() } }; f()</script>"},
    {"Layout",
     "<body><script>for (let i = 0; i < 3000; i++) { document.body.append(document.createElement('p')) }"
     "attacking(); for (;;) { document.body.style.width = Math.random() * 60 + 'px'; document.body.offsetTop "
     "}"
     "</script>"},
    {"Globals",
     "<script>attacking(); for (const name of Object.getOwnPropertyNames(window)) { try { delete "
     "window[name] } "
     "catch {} try { Object.defineProperty(window, name, {get() { throw 1 }}) } catch {} }"
     "Object.prototype.toJSON = Object.prototype.then = () => { for (;;); }</script>"},
};

}  // namespace

TEST_P(HostileScriptsTest, HarmsOnlyItself) {
    server.page("/attack", "<script>const attacking = () => { navigator.sendBeacon('/attacking') }</script>" +
                               GetParam().page);
    server.content("/worker.js", "text/javascript",
                   "onfetch = (event) => event.respondWith(new Response('x')); setInterval(() => { "
                   "for (const end = Date.now() + 50; Date.now() < end;); }, 1)");
    server.on("/file", [](const auto&, auto& response) {
        response.set_header("Content-Disposition", "attachment; filename=x.bin");
        response.set_content("x", "application/octet-stream");
    });
    view.loadUrl(server.url("/attack"));
    ASSERT_TRUE(server.waitForRequest("/attacking"));
    plugin().WebView_click(view.handle(), 10, 10);
    plugin().WebView_sendKey(view.handle(), "a");
    plugin().WebView_scroll(view.handle(), 0, 10);
    plugin().WebView_setConsoleMessageEventsEnabled(view.handle(), 1);
    plugin().WebView_executeJavaScript(view.handle(), "1 + 1", "1");
    std::this_thread::sleep_for(500ms);
    expectUnharmed();
}

INSTANTIATE_TEST_SUITE_P(Pages, HostileScriptsTest, testing::ValuesIn(attacks),
                         [](const auto& information) { return std::string(information.param.name); });

TEST_F(HostilePagesTest, AFloodOfMessagesKeepsItsOrderAndTheEngineItsMemory) {
    // What the engine does with each message takes longer than the page needs to post it.
    recorder().keepNewest(20);
    std::atomic<int> received = 0;
    std::atomic<int> misplaced = 0;
    recorder().setObserver([&](const Record& record) {
        if (record.target != view.target() || record.method != "HandleMessageEmitted" ||
            !record.payload.starts_with("flood ")) {
            return;
        }
        int number = -1;
        std::from_chars(record.payload.data() + 6, record.payload.data() + record.payload.size(), number);
        misplaced += number != received;
        ++received;
        std::this_thread::sleep_for(5ms);
    });
    loadHtml(view, R"(<script>
        const text = 'x'.repeat(1 << 18);
        let posted = 0;
        const flood = () => {
            for (let i = 0; i < 20 && posted < 300; i++) {
                zarvik.postMessage('flood ' + posted++ + ' ' + text);
            }
            if (posted < 300) { setTimeout(flood) }
        };
        </script>)");
    const long before = residentMemory();
    plugin().WebView_executeJavaScript(view.handle(), "flood()", nullptr);
    long most = 0;
    bool isComing = true;
    while (isComing && received < 300) {
        const int seen = received;
        most = std::max(most, residentMemory());
        EXPECT_EQ(bystander.evaluate("1 + 1"), "2");
        isComing = waitUntil([&] { return received > seen; });
    }
    EXPECT_EQ(received, 300);
    recorder().setObserver(nullptr);
    EXPECT_EQ(misplaced, 0);
    std::cout << "Memory " << before / 1024 << " kB, at most " << most / 1024 << " kB\n";
#if !__has_feature(thread_sanitizer)  // under which the engine's collector is off, and keeps every message
    EXPECT_LT(most - before, 40 << 20) << "of 75 MB that were posted";
#endif
    expectUnharmed();
}

TEST_F(HostilePagesTest, RequestsForTheAgentCostTheEngineLittle) {
    // Each of these short messages asks for a script of some 30 kB, and then the page takes none for a while.
    loadHtml(view, R"(<script>
        const flood = () => {
            for (let i = 0; i < 8000; i++) {
                zarvik.postMessage('zarvik.webview.uwp.iframesNeedBrowserAgent');
            }
            for (const end = Date.now() + 2000; Date.now() < end;);
            zarvik.postMessage('over');
        };
        </script>)");
    const auto isOver = [](const Record& record) { return record.payload == "over"; };
    const auto from = recorder().position();
    const long before = residentMemory();
    plugin().WebView_executeJavaScript(view.handle(), "setTimeout(flood)", nullptr);
    long most = 0;
    while (!recorder().waitFor(isOver, from, 20ms) && !HasFailure()) {
        most = std::max(most, residentMemory());
        EXPECT_EQ(bystander.evaluate("1 + 1"), "2");
    }
    std::cout << "Memory " << before / 1024 << " kB, at most " << most / 1024 << " kB\n";
#if !__has_feature(thread_sanitizer)  // under which the engine's collector is off, and keeps every message
    EXPECT_LT(most - before, 40 << 20);
#endif
    expectUnharmed();
}
