// An app's side, a device and a network that fail wherever they can: no call may crash or hang, the log must
// say what happened, and afterwards everything works again.

#include <algorithm>
#include <cstdio>
#include <set>

#include "Scenarios.h"
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
    const auto settle = [&] {
        // Long enough for what ends soon; what fails ends earlier.
        for (int turn = 0; turn < 8; ++turn) {
            app::uiThread().run([] {});
            plugin.WebView_getRenderFunction()(key);
            Sleep(3);
        }
    };
    plugin.WebView_loadHtml(view, "<p>");
    plugin.WebView_loadHtml(other, "<p>");
    settle();
    plugin.WebView_executeJavaScript(view, "0", "answer");
    plugin.WebView_captureScreenshot(view, "screenshot");
    plugin.WebView_getRawTextureData(view, "raw");
    plugin.WebView_resize(view, 31, 21);
    plugin.WebView_click(view, 1, 1);
    settle();
    plugin.WebView_loadUrl(view, "file:///C:/pages/page.html");
    settle();
    plugin.WebView_loadUrl(view, "file:///C:/pages/document.pdf");
    plugin.WebView_loadUrlWithHeaders(view, "http://site.example/", "Name: value");
    settle();
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
    settle();

    check(!view || world().hasPending() || eventually([&] {
        return std::ranges::count_if(engine.recorder().since(from), [](const Record& record) {
                   return record.payload.starts_with("answer,");
               }) == 1;
    }),
          "a script has no answer");
    plugin.WebView_destroy(view);
    plugin.WebView_destroy(other);
    settle();
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
    const bool met = world().wasFaulty() || Engine::faults.isAny();
    check(!unusual.empty() || silent || !met, "nothing in the log");
    missed += met || what == "nothing" ? 0 : 1;

    Engine::faults = {};
    world().behaveAsUsual();
    app::uiThread().run([] { app::restoreWindow(); });
    Session session(engine, 20, 20);
    session.load();
    ++world().colour;
    check(session.evaluate("0") == "0" && session.shows(20, 20), "does not work again afterwards");
}

std::string nameOf(const std::pair<app::Method, std::wstring>& method) {
    return winrt::to_string(method.second) + ", interface " +
           winrt::to_string(winrt::to_hstring(method.first.interfaceId)) + ", slot " +
           std::to_string(method.first.slot);
}

}  // namespace

void playFaults(Engine& engine) {
    engine.offerDevice(true);
    // What there is to fail: all that is called when nothing does.
    suffer(engine, "nothing", [] {}, true);
    suffer(engine, "nothing", [] {}, true);
    const auto methods = world().calledMethods();
    const auto classes = world().activatedClasses();
    const auto operations = world().operations();
    check(methods.size() > 80 && classes.size() > 20 && operations.size() > 10, "there is little to fail");

    std::size_t next = 0;
    for (const auto& method : methods) {
        const HRESULT code = codes[next++ % std::size(codes)];
        suffer(engine, "refused: " + nameOf(method), [&] { world().behave(method.first, {code}); });
    }
    for (const HRESULT code : codes) {
        const app::Method invoke{winrt::guid_of<controls::IWebView2>(),
                                 app::slotOf(&app::Methods<controls::IWebView2>::InvokeScriptAsync)};
        suffer(engine, "scripts fail with " + std::to_string(code), [&] { world().behave(invoke, {code}); });
        suffer(engine, "scripts end with " + std::to_string(code),
               [&] { world().behave(invoke, {S_OK, code}); });
    }
    for (const auto& name : classes) {
        suffer(engine, "no class " + winrt::to_string(name), [&] { world().refuse(name); });
    }
    for (const auto& method : operations) {
        for (const auto end : {Behaviour::End::soon, Behaviour::End::onPoolThread}) {
            const HRESULT code = codes[next++ % std::size(codes)];
            suffer(engine, "failed: " + nameOf(method),
                   [&] { world().behave(method.first, {S_OK, code, end}); });
        }
        suffer(
            engine, "elsewhere: " + nameOf(method),
            [&] { world().behave(method.first, {S_OK, S_OK, Behaviour::End::onPoolThread}); }, true);
        suffer(
            engine, "never: " + nameOf(method),
            [&] { world().behave(method.first, {S_OK, S_OK, Behaviour::End::never}); }, true);
    }
    const HRESULT removed = static_cast<HRESULT>(0x887A0005);
    suffer(engine, "Map fails", [] { Engine::faults.map = E_OUTOFMEMORY; });
    suffer(engine, "no texture", [] { Engine::faults.createTexture = E_OUTOFMEMORY; });
    suffer(engine, "no view of the texture", [] { Engine::faults.createView = E_INVALIDARG; });
    suffer(engine, "the device is removed", [&] { Engine::faults = {removed, removed, removed, 0}; });
    check(missed < 10, std::to_string(missed) + " faults were not met with");
}
