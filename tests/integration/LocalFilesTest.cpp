// Pages on disk: what they may use, what cannot be opened, and who has no business with them.

#include <sys/stat.h>

#include "support/EngineTest.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace std::chrono_literals;

class LocalFilesTest : public EngineTest {
  protected:
    void loadFile(const std::string& file) { load(view, fileUrl(file)); }

    std::string evaluate(const std::string& script) { return view.evaluate(script).value_or("no answer"); }

    TemporaryFolder folder;
    View view{engine, {320, 240}};
};

}  // namespace

TEST_F(LocalFilesTest, APageHasItsOwnResourcesWhateverTheFolderIsCalled) {
    const std::string name = "a b%20c+d#e&f ü日";
    folder.write(name + "/classic.js", "found.push('script')");
    folder.write(name + "/module.js", "import { word } from './sub/other.js'; found.push(word)");
    folder.write(name + "/sub/other.js", "export const word = 'module'");
    folder.write(name + "/style.css",
                 "body { width: 123px } @font-face { font-family: own; src: url(font.ttf) }");
    folder.write(name + "/font.ttf", readFile("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"));
    folder.write(name + "/worker.js", "postMessage('worker')");
    folder.write(name + "/data ü.json", R"({"text": "fetched"})");
    folder.write(name + "/image.svg", R"(<svg xmlns="http://www.w3.org/2000/svg" width="37" height="9"/>)");
    const auto page = folder.write(name + "/page ü.html", R"(<!doctype html><meta charset=utf-8>
        <link rel=stylesheet href=style.css><script>var found = []</script><script src=classic.js></script>
        <script type=module src=module.js></script><img src=image.svg><script>
            fetch('data ü.json').then((response) => response.json()).then((data) => found.push(data.text));
            fetch('classic.js', { headers: { Range: 'bytes=6-9' } }).then(async (response) =>
                found.push(response.status + await response.text()));
            onload = () => document.fonts.load('20px own').then(([font]) => found.push('font ' + font.status));
            fetch('missing.js').catch(() => found.push('missing'));
            new Worker('worker.js').onmessage = (event) => found.push(event.data);
        </script>)");
    loadFile(page);
    EXPECT_EQ(messagesSince(0, view),
              (std::vector<std::string>{urlChanged(fileUrl(page)), "HandleLoadStarted",
                                        "HandleLoadProgressUpdate 0.33", "HandleLoadProgressUpdate 0.66",
                                        "HandleLoadFinished"}));
    EXPECT_TRUE(waitForResult(view, "found.sort().join()",
                              "206push,fetched,font loaded,missing,module,script,worker"))
        << evaluate("found.join()");
    EXPECT_EQ(evaluate("[document.body.clientWidth, document.images[0].width].join()"), "123,37");
}

TEST_F(LocalFilesTest, WhatIsNoReadableFileFailsAtOnceAndHarmsNothing) {
    folder.write("page.html", "<!doctype html><title>page</title>");
    std::filesystem::create_directory_symlink("/", folder / "link");
    std::filesystem::create_symlink("nothing", folder / "dangling.html");
    std::filesystem::create_symlink("loop.html", folder / "loop.html");
    ASSERT_EQ(mkfifo((folder / "pipe.html").c_str(), 0600), 0);
    const std::string root = "file://" + folder.path.string();
    for (const std::string& url :
         {root + "/missing.html", root, root + "/", root + "/link", root + "/dangling.html",
          root + "/loop.html", root + "/pipe.html", root + "/%00.html", root + "/page.html%00",
          root + "/sub/%2e%2e%2f%2e%2e%2fpage.html", root + "/" + std::string(5000, 'x'),
          std::string("file:///dev/zero"), std::string("file:///C:/page.html")}) {
        SCOPED_TRACE(url.substr(0, 200));
        const auto from = recorder().position();
        view.loadUrl(url);
        const auto result = view.waitForLoad(5s);
        EXPECT_EQ(result.outcome, LoadResult::Outcome::failed);
        EXPECT_TRUE(waitForError(
            "An error occurred while trying to load a local file with LoadUrl(). Error message: ", from));
    }
    load(view, root + "/page.html");
    EXPECT_EQ(evaluate("document.title"), "page");
    // Neither file nor viewer.
    const auto from = recorder().position();
    EXPECT_EQ(evaluate("fetch('/other').catch(() => {}); 'asked'"), "asked");
    EXPECT_TRUE(waitForError(
        "FileUriToStreamResolver is unable to resolve the unsupported URL ms-local-stream:", from));
}

TEST_F(LocalFilesTest, NoWebPageGetsAtLocalContent) {
    const auto secret = folder.write("secret.html", "<!doctype html><title>secret</title>");
    const auto document = folder.write("secret.pdf", "%PDF-1.7");
    loadFile(secret);
    const std::string address = evaluate("location.href");
    ASSERT_TRUE(address.starts_with("ms-local-stream://"));

    View hostile(engine, {320, 240});
    server.on("/redirect", [&](const httplib::Request& request, httplib::Response& response) {
        response.set_redirect(request.get_param_value("to"));
    });
    server.page("/hostile", R"(<title>hostile</title><body><script>
        let attempts = 0;
        const results = [];
        const attempt = (name, start) => Promise.race([
            new Promise((resolve) => setTimeout(resolve, 1000, 'nothing')),
            Promise.resolve().then(start).then((value) => 'GOT ' + value, () => 'refused')
        ]).then((result) => results.push(name + ': ' + result));
        const element = (tag, attribute, url) => new Promise((resolve, reject) => {
            const made = document.body.appendChild(document.createElement(tag));
            made.onload = () => tag === 'iframe' ? reject() : resolve(tag);
            made.onerror = reject;
            made.rel = 'stylesheet';
            made[attribute] = url;
        });
        const probe = (url) => attempts = [
            attempt('fetch', () => fetch(url)),
            attempt('opaque fetch', () => fetch(url, { mode: 'no-cors' })),
            attempt('script', () => element('script', 'src', url)),
            attempt('image', () => element('img', 'src', url)),
            attempt('style', () => element('link', 'href', url)),
            attempt('frame', () => element('iframe', 'src', url)),
            // The browser engine ends the process of a page that does this with a file.
            ...(url.startsWith('file:') ? [] : [attempt('redirected frame',
                () => element('iframe', 'src', '/redirect?to=' + encodeURIComponent(url)))]),
            attempt('import', () => import(url)),
            attempt('worker', () => new Promise((resolve, reject) => {
                const worker = new Worker(url);
                worker.onerror = reject;
                worker.onmessage = resolve;
            }))
        ].length;
    </script>)");
    for (const std::string& url :
         {address, fileUrl(secret),
          address.substr(0, address.find('/', 20)) + "/pdf?pdf=" + fileUrl(document)}) {
        SCOPED_TRACE(url);
        const auto quoted = "'" + url + "'";
        load(hostile, server.url("/hostile"));
        hostile.evaluate("probe(" + quoted + ")");
        ASSERT_TRUE(waitForResult(hostile, "attempts > 6 && results.length === attempts", "true"));
        EXPECT_EQ(hostile.evaluate("results.filter((result) => result.includes('GOT')).join()"), "");
        EXPECT_EQ(
            hostile.evaluate("Array.from(frames, (frame) => { try { return frame.document.title } catch { "
                             "return 'foreign' } }).filter((title) => title === 'secret').join()"),
            "");
        // Ways to leave the page.
        for (const std::string& leave :
             {"location = " + quoted, "open(" + quoted + ")",
              "open('/redirect?to=' + encodeURIComponent(" + quoted + "))",
              "document.body.innerHTML = '<a target=_blank>'; document.links.length; "
              "Object.assign(document.querySelector('a'), { href: " +
                  quoted + " }).click()",
              "document.body.innerHTML = `<meta http-equiv=refresh content=\"0;url=" + url + "\">`",
              "document.body.innerHTML = `<form action=\"" + url + "\">`; document.forms[0].submit()"}) {
            SCOPED_TRACE(leave);
            load(hostile, server.url("/hostile"));
            hostile.evaluate(leave + "; ''");
            std::this_thread::sleep_for(150ms);
            const auto shown = hostile.evaluate("document.title + ' ' + location").value_or("");
            EXPECT_EQ(shown.find("secret"), std::string::npos) << shown;
        }
    }
    // Nor is a document on disk shown because a page asks for it.
    load(hostile, server.url("/hostile"));
    const auto from = recorder().position();
    for (const std::string& leave : {"location = ", "open("}) {
        const std::string call = leave + "'" + fileUrl(document) + "'" + (leave.ends_with('(') ? ")" : "");
        hostile.evaluate(call + "; ''");
        std::this_thread::sleep_for(150ms);
    }
    for (const auto& message : messagesSince(from, hostile)) {
        EXPECT_EQ(message.find("secret.pdf"), std::string::npos) << message;
    }
}
