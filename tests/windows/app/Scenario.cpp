#include "Scenario.h"

#include <cstdio>
#include <cstdlib>
#include <regex>

namespace {

using zarvik::host::PluginExports;
using zarvik::host::Record;
using zarvik::host::Recorder;

class Player {
  public:
    Player(const PluginExports& plugin, Recorder& recorder, const std::string& folder)
        : plugin(plugin), recorder(recorder), folder(folder) {}

    void play();

  private:
    /// Prints what was said since the last call.
    void show(const char* title);
    void line(const std::string& text) const;
    /// Until everything that was asked for before has been done.
    void fence();
    void waitForLoad();
    void cookies();
    void locals();
    void scripts();
    void navigation();

    const PluginExports& plugin;
    Recorder& recorder;
    const std::string folder;
    UwpWebView* view = nullptr;
    std::size_t shown = 0;
    int fences = 0;
};

void Player::line(const std::string& text) const {
    static const std::pair<std::regex, const char*> platformTexts[] = {
        {std::regex("(rror message: )[^,]*"), "$1..."},
        {std::regex("(HResult: -?[0-9]+, message: ).*"), "$1..."},
        {std::regex(R"([^ "]*[/\\]((page|missing)\.html))"), "$1"},
    };
    std::string shortened = text;
    for (const auto& [pattern, replacement] : platformTexts) {
        shortened = std::regex_replace(shortened, pattern, replacement);
    }
    std::printf("%s\n", shortened.c_str());
}

void Player::show(const char* title) {
    std::printf("# %s\n", title);
    for (const Record& record : recorder.since(shown)) {
        ++shown;
        const bool fromAgent = record.payload.starts_with(R"({"type":"zarvik.)");
        const bool fromFence = record.payload.starts_with("fence");
        if (record.kind == Record::Kind::message && !fromAgent && !fromFence) {
            line(record.method + " " + record.payload);
        } else if (record.kind == Record::Kind::data) {
            line("data " + record.method);
        } else if (record.kind >= Record::Kind::info) {
            const char* const kinds[] = {"info", "warning", "error"};
            line(kinds[static_cast<int>(record.kind) - static_cast<int>(Record::Kind::info)] +
                 record.payload.substr(record.payload.find(' ')));
        }
    }
    std::fflush(stdout);
}

void Player::fence() {
    const std::string id = "fence" + std::to_string(++fences);
    plugin.WebView_executeJavaScript(view, "0", id.c_str());
    if (!recorder.waitFor([&](const Record& record) { return record.payload.starts_with(id + ","); },
                          shown)) {
        line("no answer");
    }
}

void Player::waitForLoad() {
    const auto ended = [](const Record& record) {
        return record.method == "HandleLoadFinished" || record.method == "HandleLoadFailed";
    };
    if (!recorder.waitFor(ended, shown)) {
        line("no end of the load");
    }
}

void Player::cookies() {
    const auto set = [&](const char* cookie) { line(plugin.WebView_setCookie(cookie) ? "set" : "not set"); };
    const auto get = [&](const char* name) {
        char* const found = plugin.WebView_getCookies("https://site.example/", name);
        line(found);
        std::free(found);
    };
    set(R"({"Name":"first","Value":"1","Domain":"site.example","ExpirationDate":4102444800,"Secure":true})");
    set(R"({"Name":"second","Value":"2","Domain":"site.example","Path":"/","HttpOnly":true,"ExpirationDate":null})");
    set(R"({"Name":"no domain"})");
    set(R"({"Name":7})");
    set("{");
    get("first");
    get("second");
    get("none");
    plugin.WebView_deleteCookies("https://site.example/", nullptr);
    get("");
    plugin.WebView_deleteCookies("no url", "");
    show("cookies");
}

void Player::scripts() {
    for (const char* const script : {"1 + 1", "throw new Error('wrong')", "undefined", "'\\u4e16'"}) {
        plugin.WebView_executeJavaScript(view, script, script);
    }
    fence();
    show("scripts with a result");
    plugin.WebView_executeJavaScript(view, "throw new Error('wrong')", nullptr);
    fence();
    show("a script that throws");
    plugin.WebView_executeJavaScript(view, "_zarvikBridge.postMessage('from the page')", "");
    fence();
    show("a page message");
}

void Player::navigation() {
    const auto load = [&](const char* title, const char* url) {
        plugin.WebView_loadUrl(view, url);
        waitForLoad();
        show(title);
    };
    load("a server that is not there", "http://127.0.0.1:2/");
    load("a PDF that cannot be had", "ftp://127.0.0.1/document.pdf");
    load("no URL at all", "nothing");
    plugin.WebView_loadUrlWithHeaders(view, "http://127.0.0.1:2/",
                                      "Good: one\nBad\nWorse: a: b\nNot so: good");
    waitForLoad();
    show("headers");
}

void Player::locals() {
    const auto load = [&](const std::string& name) {
        plugin.WebView_loadUrl(view, (folder + name).c_str());
        waitForLoad();
        fence();
        show(name.c_str());
    };
    load("page.html");
    load("missing.html");
    plugin.WebView_canGoBack(view);
    plugin.WebView_canGoForward(view);
    fence();
    show("history");
}

void Player::play() {
    plugin.WebView_logVersionInfo();
    cookies();

    view = plugin.WebView_newInNative2DMode("flat", 10, 10, 320, 240);
    plugin.WebView_zoomIn(view);
    plugin.WebView_zoomOut(view);
    plugin.WebView_executeJavaScript(view, "1", "too early");
    fence();
    show("no page yet");
    plugin.WebView_loadHtml(view, "<title>title</title><p>text");
    waitForLoad();
    show("a page as text");
    scripts();
    navigation();
    locals();
    plugin.WebView_setVisible(view, false);
    plugin.WebView_setRect(view, 0, 0, 0, 0);
    plugin.WebView_captureScreenshot(view, "picture");
    plugin.WebView_getRawTextureData(view, "pixels");
    fence();
    show("no size");
    plugin.WebView_destroy(view);
    plugin.WebView_loadUrl(view, "http://127.0.0.1:2/");

    view = plugin.WebView_new("deep", 64, 48, 0);
    plugin.WebView_loadHtml(view, "<p>text");
    waitForLoad();
    fence();
    show("offscreen without a device");
    plugin.WebView_destroy(view);
    view = plugin.WebView_new("last", 0, 0, 1);
    plugin.WebView_captureScreenshot(view, "picture");
    fence();
    show("offscreen without a size");
    plugin.WebView_destroy(view);
}

}  // namespace

void playScenario(const PluginExports& plugin, Recorder& recorder, const std::string& folder) {
    Player(plugin, recorder, folder).play();
}
