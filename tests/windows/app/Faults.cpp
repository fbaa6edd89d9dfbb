// An app's side, a device and a network that fail wherever they can: no call may crash or hang, the log must
// say what happened, and afterwards everything works again.

#include <algorithm>
#include <cstdio>
#include <set>

#include "Session.h"

namespace {

using app::Behaviour;
using app::check;
using app::world;
using zarvik::host::Record;

constexpr HRESULT codes[] = {E_FAIL,
                             E_OUTOFMEMORY,
                             E_ACCESSDENIED,
                             static_cast<HRESULT>(0x80000013),
                             static_cast<HRESULT>(0x80020101),
                             static_cast<HRESULT>(0x887A0005),
                             RPC_E_DISCONNECTED};

/// Uses everything once, whether or not it works.
void useEverything(Engine& engine) {
    const auto& plugin = engine.plugin();
    const auto from = engine.recorder().position();
    auto* const view = plugin.WebView_new("use", 30, 20, false);
    auto* const other = plugin.WebView_new("other", 30, 20, true);
    const int key = plugin.WebView_depositPointer(view);
    // Long enough for what ends soon; what fails ends earlier.
    const auto settle = [&](std::ptrdiff_t loads) {
        const auto begun = engine.recorder().position();
        const auto ended = [&] {
            return std::ranges::count_if(engine.recorder().since(begun), [](const Record& record) {
                return record.method == "HandleLoadFinished" || record.method == "HandleLoadFailed";
            });
        };
        for (int turn = 0; turn < (loads > 0 ? 40 : 8) && (loads == 0 || ended() < loads); ++turn) {
            app::uiThread().run([] {});
            plugin.WebView_getRenderFunction()(key);
            Sleep(3);
        }
    };
    const auto load = [&](const char* url, const char* otherUrl) {
        plugin.WebView_loadUrl(view, url);
        plugin.WebView_loadUrlWithHeaders(other, otherUrl, "Name: value");
        settle(2);
    };
    plugin.WebView_loadHtml(view, "<p>");
    plugin.WebView_loadHtml(other, "<p>");
    settle(2);
    plugin.WebView_executeJavaScript(view, "0", "answer");
    plugin.WebView_captureScreenshot(view, "screenshot");
    plugin.WebView_getRawTextureData(view, "raw");
    plugin.WebView_resize(view, 31, 21);
    plugin.WebView_click(view, 1, 1);
    settle(0);
    load("file:///C:/pages/page.html", "http://site.example/");
    load("file:///C:/pages/document.pdf", "http://127.0.0.1:3/paper.pdf");
    load("http://127.0.0.1:3/refused.pdf", "http://127.0.0.1:2/");
    plugin.WebView_loadUrl(view, "http://127.0.0.1:3/paper.pdf");
    plugin.WebView_canGoBack(view);
    plugin.WebView_goBack(view);
    plugin.WebView_reload(view);
    plugin.WebView_stopLoad(view);
    plugin.WebView_clearAllData();
    plugin.WebView_setCookie(
        R"({"Name":"n","Value":"v","Domain":"site.example","ExpirationDate":4102444800})");
    std::free(plugin.WebView_getCookies("http://site.example/", ""));
    plugin.WebView_deleteCookies("http://site.example/", "");
    plugin.WebView_handleMixedRealityAppFocusChanged(false);
    plugin.WebView_handleMixedRealityAppFocusChanged(true);
    settle(0);

    check(!view || !world()->pending.empty() || eventually([&] {
        return std::ranges::count_if(engine.recorder().since(from), [](const Record& record) {
                   return record.payload.starts_with("answer,");
               }) == 1;
    }),
          "a script has no answer");
    plugin.WebView_destroy(view);
    plugin.WebView_destroy(other);
    settle(0);
    plugin.WebView_removePointer(view);
    for (const Record& record : engine.recorder().since(from)) {
        if (record.method == "HandleTextureChanged") {
            plugin.WebView_destroyTexture(reinterpret_cast<void*>(std::stoull(record.payload)));
        }
    }
}

/// How many faults nothing met with: what is called depends a little on how fast things go.
int missed = 0;

/// Lets the world be at fault, uses everything, and looks whether all is well again afterwards.
void suffer(Engine& engine, const std::string& what, const std::function<void()>& fault,
            bool silent = false) {
    app::beginStep(what);
    const auto from = engine.recorder().position();
    fault();
    useEverything(engine);
    // What is logged when all goes well says nothing of the fault.
    static std::set<std::string> usual;
    std::set<std::string> unusual;
    for (const Record& record : engine.recorder().since(from)) {
        const auto text = record.payload.substr(record.payload.find(' ') + 1);
        if (record.kind >= Record::Kind::info && !usual.contains(text)) {
            unusual.insert(text);
        }
    }
    if (what == "nothing") {
        usual.merge(unusual);
    }
    const bool met = world()->faulty || Engine::faults.isAny();
    check(!unusual.empty() || silent || !met, "nothing in the log");
    missed += met || what == "nothing" ? 0 : 1;

    Engine::faults = {};
    world()->behaveAsUsual();
    app::uiThread().run([] { app::restoreWindow(); });
    Session session(engine, 20, 20);
    session.load();
    ++world()->colour;
    check(session.evaluate("0") == "0" && session.shows(20, 20), "does not work again afterwards");
}

/// The dispatcher takes no work for a while, as when the app is suspended, and a picture fails meanwhile.
void pauseOfTheDispatcher(Engine& engine) {
    app::beginStep("the dispatcher pauses");
    const auto& plugin = engine.plugin();
    const auto begin = [&] {
        auto session = std::make_unique<Session>(engine, 30, 20);
        session->load();
        check(session->shows(30, 20), "before the pause");
        const auto from = engine.recorder().position();
        const auto now = world();
        now->behaviours[app::methodOf<METHOD(winrt::Windows::UI::Core::ICoreDispatcher, RunAsync)>()] = {
            E_FAIL};
        now->behaviours[app::methodOf<METHOD(xaml::Media::Imaging::IRenderTargetBitmap,
                                             RenderToSizeAsync)>()] = {E_FAIL};
        return std::pair(std::move(session), from);
    };
    const auto logged = [&](const std::string& text, std::size_t from) {
        return engine.recorder()
            .waitFor([&](const Record& record) { return record.payload.find(text) != std::string::npos; },
                     from, patience)
            .has_value();
    };
    {
        const auto [session, from] = begin();
        check(logged("capturing", from), "a picture that fails is logged");
        Sleep(150);  // the loop's own pause ends, and with the next failure another begins
        world()->behaveAsUsual();
        ++world()->colour;
        check(session->shows(30, 20), "the pictures go on by themselves");
    }
    {
        const auto [session, from] = begin();
        plugin.WebView_setRenderingEnabled(session->view(), false);
        plugin.WebView_setRenderingEnabled(session->view(), true);
        plugin.WebView_resize(session->view(), 50, 40);
        session->turn();
        check(logged("WebView_setRenderingEnabled", from) && logged("WebView_resize", from),
              "work that is refused is logged");
        check(session->evaluate("1").starts_with("Error: An unexpected error occurred"),
              "a script that is refused is answered");
        world()->behaveAsUsual();
        plugin.WebView_setRenderingEnabled(session->view(), true);
        plugin.WebView_resize(session->view(), 40, 30);
        ++world()->colour;
        check(session->shows(40, 30), "the pictures go on when asked for");
    }
    {
        const auto [session, from] = begin();
        session->destroy();
        check(logged("UI thread", from), "a destruction that has to wait is logged");
        world()->behaveAsUsual();
        // The session waits for the control to go.
    }
}

}  // namespace

void playFaults(Engine& engine) {
    engine.offerDevice(true);
    pauseOfTheDispatcher(engine);
    // What there is to fail: all that is called when nothing does.
    suffer(engine, "nothing", [] {}, true);
    suffer(engine, "nothing", [] {}, true);
    auto methods = world()->methods;
    // The plug-in's library takes a buffer's memory without asking whether there is any.
    methods.erase(app::methodOf<METHOD(winrt::impl::IBufferByteAccess, Buffer)>());
    const auto classes = world()->classes;
    const auto operations =
        std::ranges::count_if(methods, [](const auto& method) { return method.second.startsOperation; });
    check(methods.size() > 80 && classes.size() > 20 && operations > 10, "there is little to fail");

    const auto behave = [&](const std::string& what, const app::Method& method, const Behaviour& behaviour,
                            bool silent = false) {
        suffer(engine, what, [&] { world()->behaviours[method] = behaviour; }, silent);
    };
    const auto invoke = app::methodOf<METHOD(controls::IWebView2, InvokeScriptAsync)>();
    for (const HRESULT code : codes) {
        behave("scripts fail with " + std::to_string(code), invoke, {code});
        behave("scripts end with " + std::to_string(code), invoke, {S_OK, code});
    }
    for (const auto& name : classes) {
        suffer(engine, "no class " + winrt::to_string(name), [&] { world()->refusedClass = name; });
    }
    std::size_t next = 0;
    const auto nextCode = [&] { return codes[next++ % std::size(codes)]; };
    for (const auto& [method, use] : methods) {
        const auto name = nameOf(method, use.className);
        behave("refused: " + name, method, {nextCode()});
        if (use.startsOperation) {
            using enum Behaviour::End;
            behave("failed: " + name, method, {S_OK, nextCode(), soon});
            behave("failed elsewhere: " + name, method, {S_OK, nextCode(), onPoolThread});
            behave("elsewhere: " + name, method, {S_OK, S_OK, onPoolThread}, true);
            behave("never: " + name, method, {S_OK, S_OK, never}, true);
        }
    }
    const HRESULT removed = static_cast<HRESULT>(0x887A0005);
    suffer(engine, "Map fails", [] { Engine::faults.map = E_OUTOFMEMORY; });
    suffer(engine, "no texture", [] { Engine::faults.createTexture = E_OUTOFMEMORY; });
    suffer(engine, "no view of the texture", [] { Engine::faults.createView = E_INVALIDARG; });
    suffer(engine, "the device is removed", [&] { Engine::faults = {removed, removed, removed}; });
    check(missed < 10, std::to_string(missed) + " faults were not met with");
}
