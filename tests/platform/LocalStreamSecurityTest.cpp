#include <algorithm>
#include <thread>

#include "LocalStreamTest.h"
#include "element_tree.h"
#include "web_view.h"

using namespace std::chrono_literals;

/// Local content against pages that want it and may not have it. What such a page tries comes to nothing when
/// the resolver is never asked.
class LocalStreamSecurityTest : public LocalStreamTest {
  protected:
    LocalStreamSecurityTest() { site->page("/secret", "window.stolen = 'secret'"); }

    /// How often the resolver was asked for the secret.
    auto asked() const { return std::ranges::count(site->requests(), "/secret"); }

    static std::string addressOf(WebView const& view) {
        return onUIThread([&] {
            auto const* const uri =
                webkit_web_view_get_uri(runtime::object_of<runtime::web_view_object>(view).view());
            return std::string(uri ? uri : "");
        });
    }

    /// Navigates, whatever the page that is there may be about to do.
    static void arrive(WebView const& view, std::function<void()> const& navigate, std::string const& url) {
        auto const arrived = std::make_shared<std::atomic<bool>>(false);
        onUIThread([&] {
            view.NavigationCompleted(
                [arrived, view = winrt::make_weak(view), url](auto const&, auto const& arguments) {
                    if (arguments.IsSuccess() && addressOf(view.get()) == url) {
                        *arrived = true;
                    }
                });
        });
        constexpr int attempts = 5;
        for (int i = 0; i < attempts && !*arrived; ++i) {
            onUIThread(navigate);
            for (int wait = 0; wait < 200 && !*arrived; ++wait) {
                std::this_thread::sleep_for(5ms);
            }
        }
        ASSERT_TRUE(*arrived) << "the page does not come";
    }

    /// Counts the new windows that are asked for, and opens them in the view itself, as applications do.
    static std::shared_ptr<std::vector<std::string>> openWindowsInside(WebView const& view) {
        auto const windows = std::make_shared<std::vector<std::string>>();
        onUIThread([&] {
            view.NewWindowRequested([windows](auto const& sender, auto const& arguments) {
                windows->push_back(winrt::to_string(arguments.Uri().AbsoluteUri()));
                arguments.Handled(true);
                sender.Navigate(arguments.Uri());
            });
        });
        return windows;
    }

    /// The ways to something that a page can try, as bodies of asynchronous functions that give what they
    /// got, or throw.
    static std::vector<std::string> waysToRead(std::string const& target);
    /// The same for ways to go there: with the whole view, a frame or a new window.
    static std::vector<std::string> waysToGo(std::string const& target);
};

std::vector<std::string> LocalStreamSecurityTest::waysToRead(std::string const& target) {
    std::vector<std::string> ways{
        R"(return (await fetch(target)).text())",
        R"(await fetch(target, {mode: 'no-cors'}); return 'fetched')",
        R"(const request = new XMLHttpRequest(); request.open('GET', target, false); request.send();
           return request.responseText)",
        R"(document.head.insertAdjacentHTML('beforeend', '<meta name=referrer content=no-referrer>');
           const request = new XMLHttpRequest(); request.open('POST', target, false);
           request.setRequestHeader('x', 'y'); request.send('z'); return request.responseText)",
        R"(return await import(target))",
        R"(const worker = new Worker(target);
           return await new Promise((done, fail) => { worker.onmessage = done; worker.onerror = fail }))",
        R"(const worker = new Worker(URL.createObjectURL(new Blob(
               [`importScripts('${target}'); postMessage(1)`])));
           return await new Promise((done, fail) => { worker.onmessage = done; worker.onerror = fail }))",
        R"(const worker = new Worker(URL.createObjectURL(new Blob(
               [`fetch('${target}').then(() => postMessage(1))`])));
           return await new Promise((done, fail) => { worker.onmessage = done; setTimeout(fail, 200) }))",
        R"(await new FontFace('x', `url(${target})`).load(); return 'font')",
        R"(navigator.sendBeacon(target); throw 'unknown')",
        R"(const source = new EventSource(target);
           return await new Promise((done, fail) => { source.onopen = done; source.onerror = fail }))",
        R"(const style = document.createElement('style');
           style.textContent = `@import '${target}'; body { background: url(${target}) }`;
           document.head.append(style); throw 'unknown')",
    };
    for (auto const* element : {"img src", "script src", "script type=module src", "link rel=stylesheet href",
                                "link rel=preload as=fetch href", "link rel=prefetch href",
                                "link rel=icon href", "audio src", "video src", "video poster", "embed src",
                                "object data", "input type=image src", "svg><image href", "svg><use href"}) {
        ways.push_back("document.body.insertAdjacentHTML('beforeend', `<" + std::string(element) +
                       "='${target}'>`); throw 'unknown'");
    }
    for (auto const* element : {"script", "link", "iframe", "object"}) {
        ways.push_back("const element = document.createElement('" + std::string(element) + R"(');
            element.rel = 'stylesheet';
            element.src = element.href = element.data = target;
            const loaded = new Promise((done) => { element.onload = done; setTimeout(done, 200) });
            document.body.append(element);
            await loaded;
            return window.stolen || element.contentDocument.body.textContent || (() => { throw 'empty' })())");
    }
    for (auto& way : ways) {
        way = "const target = '" + target + "';" + way;
    }
    return ways;
}

std::vector<std::string> LocalStreamSecurityTest::waysToGo(std::string const& target) {
    std::vector<std::string> ways{
        R"(location = target)",
        R"(location.replace(target))",
        R"(top.location = target)",
        R"(window.open(target))",
        R"(window.open(target, '_self'))",
        R"(window.open(target, '_top'))",
        R"(window.open('', 'other').location = target)",
        R"(history.pushState(null, '', target))",
        R"(location = `javascript:location='${target}'`)",
        R"(location = URL.createObjectURL(new Blob(
               [`<script>location = '${target}'</script>`], {type: 'text/html'})))",
        R"(document.open();
           document.write(`<base href='${target}'><script src='x'></script><img src=y>`); document.close())",
        R"(const frame = document.createElement('iframe'); document.body.append(frame);
           frame.contentWindow.location = target)",
        R"(const frame = document.createElement('iframe');
           frame.src = `data:text/html,<script>location = '${target}'</script>`; document.body.append(frame))",
    };
    for (auto const* element :
         {R"(<meta http-equiv=refresh content='0;url=${target}'>)", R"(<iframe src='${target}'></iframe>)",
          R"(<iframe srcdoc="<script>location = '${target}'</script>"></iframe>)",
          R"(<iframe srcdoc="<script>top.location = '${target}'</script>"></iframe>)",
          R"(<iframe sandbox='allow-scripts allow-top-navigation allow-popups'
                 srcdoc="<script>open('${target}'); top.location = '${target}'</script>"></iframe>)"}) {
        ways.push_back("document.body.insertAdjacentHTML('beforeend', `" + std::string(element) + "`)");
    }
    for (auto const* attributes : {"", "target=_blank", "target=_top", "rel=noopener target=_blank"}) {
        ways.push_back("const holder = document.createElement('div'); holder.innerHTML = `<a " +
                       std::string(attributes) +
                       " href='${target}'>x</a>`; document.body.append(holder); holder.firstChild.click()");
    }
    for (auto const* method : {"get", "post"}) {
        for (auto const* window : {"_self", "_top", "_blank"}) {
            ways.push_back(
                "const form = document.createElement('form'); form.action = target; form.method = '" +
                std::string(method) + "'; form.target = '" + window +
                "'; document.body.append(form); form.submit()");
        }
    }
    for (auto& way : ways) {
        way = "const target = '" + target + "';" + way + "; return 'tried'";
    }
    return ways;
}

// The worst place: the view has shown local content before, so it has the resolver, and its history leads
// there.
TEST_F(LocalStreamSecurityTest, WebPagesReachNothing) {
    auto const secret = uriOf("secret");
    server.redirect("/redirect", secret);
    server.on("/refresh", [&](auto const&, auto& response) {
        response.set_header("Refresh", "0;url=" + secret);
        response.set_content("<!doctype html>", "text/html");
    });
    server.page("/hostile", "<title>hostile</title><body>");
    auto const view = makeView();
    ASSERT_EQ(visit(view, "page.html"), "success");
    auto const windows = openWindowsInside(view);
    auto const hostile = server.url("/hostile");
    load(view, hostile);
    for (auto const& target : {secret, server.url("/redirect")}) {
        for (auto const& way : waysToRead(target)) {
            EXPECT_TRUE(run(view, way).starts_with("failed:")) << way;
        }
    }
    EXPECT_EQ(asked(), 0);
    for (auto const& target : {secret, server.url("/redirect"), server.url("/refresh")}) {
        for (auto const& way : waysToGo(target)) {
            arrive(view, [&] { view.Navigate(Uri(winrt::to_hstring(hostile))); }, hostile);
            onUIThread([&] {
                view.InvokeScriptAsync(L"eval", {winrt::to_hstring("(async () => {" + way + "})(); ''")});
            });
            std::this_thread::sleep_for(60ms);
            EXPECT_EQ(asked(), 0) << way;
            EXPECT_FALSE(addressOf(view).starts_with("ms-local-stream:")) << way;
        }
    }
    for (auto const& uri : *windows) {
        EXPECT_FALSE(uri.starts_with("ms-local-stream:")) << uri;
    }
    arrive(view, [&] { view.NavigateToString(L"<!doctype html><body>"); }, "about:blank");
    for (auto const& way : waysToRead(secret)) {
        run(view, way);
    }
    EXPECT_EQ(asked(), 0) << "from a page without an address";
}

// A frame of another origin inside a local page is where the resolver does answer the page around it.
TEST_F(LocalStreamSecurityTest, FramesOfOtherOriginsReachNothing) {
    auto const secret = uriOf("secret");
    server.page("/frame", R"(<body><script>
        onmessage = async (event) => {
            let result;
            try { result = await eval('(async () => {' + event.data + '})()') } catch (error) { result = 'failed: ' + error }
            parent.postMessage(`${result}`, '*');
        };
    </script>)");
    site->page("/outer", "<!doctype html><title>outer</title><body><iframe id=frame src='" +
                             server.url("/frame") + "'></iframe>");
    auto const view = makeView();
    auto const outer = uriOf("outer");
    server.on("/redirect", [&](auto const&, auto& response) {
        response.status = 302;
        response.set_header("Location", secret);
        response.set_header("Referrer-Policy", "no-referrer");
    });
    auto const windows = openWindowsInside(view);
    auto const inFrame = [&](std::string const& way) {
        arrive(view, [&] { go(view, "outer"); }, outer);
        return run(view, R"(
            const answer = new Promise((done) => {
                onmessage = (event) => done(event.data);
                setTimeout(done, 400, 'nothing');
            });
            frame.contentWindow.postMessage(decodeURIComponent(')" +
                             winrt::to_string(Uri::EscapeComponent(winrt::to_hstring(way))) + R"('), '*');
            return answer;
        )");
    };
    EXPECT_EQ(inFrame("return 'it works'"), "it works");
    EXPECT_TRUE(inFrame("return parent.document.title").starts_with("failed:"));
    for (auto const& target : {secret, server.url("/redirect")}) {
        for (auto const& way : waysToRead(target)) {
            auto const result = inFrame(way);
            EXPECT_TRUE(result.starts_with("failed:") || result == "nothing") << way << " gives " << result;
            EXPECT_EQ(asked(), 0) << way;
        }
    }
    for (auto const& target : {secret, server.url("/redirect")}) {
        for (auto const& way : waysToGo(target)) {
            inFrame(way);
            std::this_thread::sleep_for(60ms);
            EXPECT_EQ(asked(), 0) << way;
            // A frame may lead its view to the web, but not to other local content.
            auto const address = addressOf(view);
            EXPECT_TRUE(address == outer || !address.starts_with("ms-local-stream:")) << way << address;
        }
    }
    for (auto const& uri : *windows) {
        EXPECT_FALSE(uri.starts_with("ms-local-stream:")) << uri;
    }
}

// The engine itself would navigate the view to where a download is redirected, unless it cancels the download
// in time.
TEST_F(LocalStreamSecurityTest, RedirectedDownloadsLeadNowhere) {
    auto const secret = uriOf("secret");
    server.redirect("/redirect", secret);
    auto const link = "<a download rel=noreferrer href=" + server.url("/redirect") + ">x</a>";
    std::string const pages[] = {
        link + "<script>document.links[0].click()</script>",
        "<iframe id=frame></iframe><script>const inner = frame.contentDocument; inner.body.innerHTML = `" +
            link + "`; inner.links[0].click()</script>",
        "<iframe id=frame></iframe><script>const inner = frame.contentDocument; inner.open(); inner.write(`" +
            link + "`); inner.close(); inner.links[0].click()</script>",
        "<iframe sandbox='allow-scripts allow-downloads' srcdoc='" + link +
            "<script>document.links[0].click()</script>'></iframe>",
        "<iframe id=frame sandbox='allow-same-origin allow-downloads' srcdoc='" + link +
            "'></iframe><script>frame.onload = () => frame.contentDocument.links[0].click()</script>",
    };
    auto const view = makeView();
    site->page("/outer", "<!doctype html><body><iframe src='" + server.url("/frame") + "'></iframe>");
    for (auto const& page : pages) {
        server.page("/frame", "<body>" + page);
        constexpr int attempts = 4;
        for (int i = 0; i < attempts; ++i) {
            arrive(view, [&] { go(view, "outer"); }, uriOf("outer"));
            std::this_thread::sleep_for(30ms);
            arrive(
                view, [&] { view.Navigate(Uri(winrt::to_hstring(server.url("/frame")))); },
                server.url("/frame"));
            std::this_thread::sleep_for(30ms);
        }
        EXPECT_EQ(asked(), 0) << page;
    }
}

TEST_F(LocalStreamSecurityTest, LinksToDownloadsDoNothing) {
    server.page("/",
                "<title>page</title><a id=link download href=/web>x</a><iframe srcdoc='<a download "
                "href=/web>x</a>'>");
    auto const view = makeView();
    load(view, server.url("/"));
    auto const events = eventsOf(view);
    EXPECT_EQ(run(view, R"(
        const made = document.createElement('a');
        made.href = URL.createObjectURL(new Blob(['x'], {type: 'text/plain'}));
        made.download = 'x.txt';
        made.click();
        link.click();
        frames[0].document.links[0].click();
        await new Promise((done) => setTimeout(done, 100));
        return [document.title, made.outerHTML.includes('download="x.txt"'), link.download === '',
                frames[0].document.links.length];
    )"),
              "page,true,true,1");
    EXPECT_EQ(taken(events), std::vector<std::string>{});
}

TEST_F(LocalStreamSecurityTest, OriginsAndViewsAreApart) {
    auto const secret = uriOf("secret", L"Other");
    auto const view = makeView();
    // The view knows both; the page of one must not have what belongs to the other.
    EXPECT_EQ(ending(view, [&] { go(view, "page.html", L"Other"); }), "success");
    ASSERT_EQ(visit(view, "page.html"), "success");
    for (auto const& way : waysToRead(secret)) {
        EXPECT_TRUE(run(view, way).starts_with("failed:")) << way;
    }
    EXPECT_EQ(run(view, R"(
        const frame = document.createElement('iframe');
        frame.src = ')" + secret +
                            R"(';
        document.body.append(frame);
        await new Promise((done) => setTimeout(done, 200));
        return frame.contentDocument?.body?.innerHTML || 'nothing';
    )"),
              "nothing");
    EXPECT_EQ(asked(), 0);

    EXPECT_EQ(
        ending(view,
               [&] { view.InvokeScriptAsync(L"eval", {winrt::to_hstring("location = '" + secret + "'")}); }),
        "403");
    EXPECT_EQ(asked(), 0);
    EXPECT_EQ(ending(view, [&] { view.GoBack(); }), "success");
    EXPECT_EQ(addressOf(view), uriOf("page.html", L"Other"));
    EXPECT_EQ(ending(view, [&] { view.GoForward(); }), "success");
    EXPECT_EQ(addressOf(view), uriOf("page.html"));

    // A view that was never given this resolver asks it nothing, not even for a local page's own address.
    auto const other = makeView();
    auto const own = std::make_shared<Site>();
    own->page("/page.html", "<!doctype html><title>own</title>");
    EXPECT_EQ(ending(other,
                     [&] {
                         other.NavigateToLocalStreamUri(other.BuildLocalStreamUri(L"Third", L"page.html"),
                                                        resolverOf(own));
                     }),
              "success");
    EXPECT_EQ(ending(other,
                     [&] {
                         other.InvokeScriptAsync(L"eval",
                                                 {winrt::to_hstring("location = '" + uriOf("secret") + "'")});
                     }),
              "403");
    EXPECT_EQ(asked(), 0);
    EXPECT_EQ(run(other, "return document.title"), "own");
}
