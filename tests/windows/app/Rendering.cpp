// Pictures on their way into the texture, and what an engine does with a view meanwhile.

#include <algorithm>

#include "Session.h"

namespace {

using app::check;
using app::world;

void bothPaths(Engine& engine) {
    for (const bool preview : {false, true}) {
        const int renderings = world()->renderings;
        const int previews = world()->previews;
        Session session(engine, 61, 43, preview);
        session.load();
        for (int picture = 0; picture < 2; ++picture) {
            ++world()->colour;
            check(session.shows(61, 43), "the texture shows the page");
        }
        check(session.announcements() == 1, "one texture, one announcement");
        check((world()->renderings > renderings) == !preview && (world()->previews > previews) == preview,
              "pictures are taken the way that was asked for");
    }
}

void sizes(Engine& engine) {
    Session session(engine, 61, 43);
    session.load();
    check(session.shows(61, 43), "the first size");
    for (int width = 20; width <= 100; ++width) {
        engine.plugin().WebView_resize(session.view(), width, 50);
        session.turn();
    }
    check(session.shows(100, 50), "after many sizes");
    const int previews = world()->previews;
    // Just when a picture of the size before is about to be rendered.
    world()->beforeRendering = [&] { engine.plugin().WebView_resize(session.view(), 1001, 9); };
    check(session.shows(1001, 9) && world()->previews > previews, "larger than the window");
    world()->beforeRendering = nullptr;
    // No multiple of what a display of this kind can render.
    world()->rawPixelsPerViewPixel = 1.5;
    engine.plugin().WebView_resize(session.view(), 31, 22);
    ++world()->colour;
    check(session.shows(31, 22, 1), "on a display of another scale");
    world()->rawPixelsPerViewPixel = 1;
}

void endings(Engine& engine) {
    const auto& plugin = engine.plugin();
    const std::function<void(Session&)> states[] = {
        [](Session&) {},
        [](Session& session) { session.evaluate("0"); },
        [&](Session& session) { plugin.WebView_loadHtml(session.view(), "<p>"); },
        [](Session& session) { session.load(); },
        [](Session& session) {
            session.load();
            session.shows(30, 20);
        },
        [&](Session& session) {
            session.load();
            plugin.WebView_setRenderingEnabled(session.view(), false);
        },
        [&](Session& session) {
            session.load();
            plugin.WebView_captureScreenshot(session.view(), "late");
            plugin.WebView_executeJavaScript(session.view(), "0", "late");
            plugin.WebView_loadUrl(session.view(), "file:///C:/pages/page.html");
        },
        [&](Session& session) {
            session.load();
            engine.offerDevice(false);
            plugin.WebView_resize(session.view(), 50, 50);
        },
        [](Session& session) {
            session.destroy();
            session.destroy();
        },
    };
    for (const auto& reach : states) {
        for (const bool preview : {false, true}) {
            Session session(engine, 30, 20, preview);
            reach(session);
            session.destroy();
            // Calls that come too late.
            plugin.WebView_loadHtml(session.view(), "<p>");
            plugin.WebView_executeJavaScript(session.view(), "1", "too late");
            plugin.WebView_resize(session.view(), 10, 10);
            session.turn();
        }
        engine.offerDevice(true);
    }
    for (const auto& record : engine.recorder().all()) {
        check(record.payload.find("too late") == std::string::npos, "a destroyed view answers");
    }
}

bool noted(const std::wstring& event) {
    return eventually([&] { return world()->hasNoted(event); });
}

void requests(Engine& engine) {
    using enum controls::WebViewPermissionType;
    const auto& plugin = engine.plugin();
    Session session(engine, 30, 20);
    session.load();
    for (const bool allowed : {false, true}) {
        plugin.WebView_setCameraAndMicrophoneEnabled(allowed);
        plugin.WebView_setGeolocationEnabled(allowed);
        for (const auto type : {Media, Geolocation, WebNotifications}) {
            world()->notes.clear();
            app::requestPermission(type);
            check(noted(allowed && type != WebNotifications ? L"allowed" : L"denied"), "a permission");
        }
    }
    const auto from = engine.recorder().position();
    const auto heard = [&](const std::string& text) {
        return std::ranges::any_of(engine.recorder().since(from), [&](const auto& record) {
            return record.payload.find(text) != std::string::npos;
        });
    };
    app::requestNewWindow(L"http://site.example/new");
    session.waitForLoad(from);
    check(heard("site.example/new\" }}"), "a new window opens in the view");
    for (const std::string url :
         {"ms-appx-web:///page.html", "ms-local-stream://app_ZarvikLocal/file/C:/pages/page.html"}) {
        app::requestNewWindow(std::wstring(winrt::to_hstring(url)));
        check(heard("isn't allowed to open the local content " + url), "a page cannot open local content");
    }

    session.load();
    world()->scripts[L"transparent"] = {L"", S_OK, L"zarvik.webview.pageTransparencyDetermined true"};
    world()->scripts[L"opaque"] = {L"", S_OK, L"zarvik.webview.pageTransparencyDetermined false"};
    world()->notes.clear();
    session.evaluate("transparent");
    check(noted(L"transparent"), "a transparent page");
    check(!world()->hasNoted(L"opaque"), "a transparent page only");
    session.evaluate("opaque");
    check(noted(L"opaque"), "an opaque page");
    check(noted(L"eval: _zarvikInternal.setDefaultBackground()"), "an opaque page gets a background");
    plugin.WebView_clearAllData();
    check(noted(L"data cleared"), "all data cleared");
    check(session.evaluate("0") == "0", "the view is in order");
}

void places(Engine& engine) {
    world()->panelIsNested = true;
    {
        Session session(engine, 30, 20);
        session.load();
        check(session.shows(30, 20), "a panel further inside");
    }
    world()->panelIsNested = false;
    world()->hasPanel = false;
    {
        Session session(engine, 30, 20);
        session.load();
    }
    world()->hasPanel = true;
}

}  // namespace

void playRendering(Engine& engine) {
    engine.offerDevice(true);
    const auto step = [&](const char* name, void (*part)(Engine&)) {
        app::beginStep(name);
        part(engine);
    };
    step("both paths", bothPaths);
    step("sizes", sizes);
    step("requests", requests);
    step("places", places);
    for (const auto& record : engine.recorder().all()) {
        const bool fromUI = record.thread == app::uiThread().identifier();
        if (record.kind == Engine::Record::Kind::message) {
            check(fromUI || record.method == "HandleTextureChanged",
                  record.method + " came from another thread");
        }
    }
    step("endings", endings);
}
