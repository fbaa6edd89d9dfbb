#include "Scenario.h"

#include <cstdio>
#include <cstdlib>
#include <regex>

namespace {

using zarvik::host::PluginExports;
using zarvik::host::Record;
using zarvik::host::Recorder;

Recorder recorder;

void add(Record record) {
    record.thread = std::this_thread::get_id();
    recorder.add(std::move(record));
}

template <Record::Kind kind>
void log(const char* line) {
    add({.kind = kind, .payload = line});
}

class Player {
  public:
    Player(const PluginExports& plugin, Recorder& recorder, const std::string& folder,
           const std::string& server)
        : plugin(plugin), recorder(recorder), folder(folder), server(server) {}

    void play() {
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
        userAgents();
        places();
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

  private:
    void line(const std::string& text) const {
        static const std::pair<std::regex, const char*> platformTexts[] = {
            {std::regex("(rror message: )[^,]*"), "$1..."},
            {std::regex("(HResult: -?[0-9]+, message: ).*"), "$1..."},
            {std::regex(R"([^ "]*[/\\]((page|missing)\.html|(paper|refused)\.pdf))"), "$1"},
        };
        std::string shortened = text;
        for (const auto& [pattern, replacement] : platformTexts) {
            shortened = std::regex_replace(shortened, pattern, replacement);
        }
        std::printf("%s\n", shortened.c_str());
    }

    /// Prints what was said since the last call.
    void show(const char* title) {
        std::printf("# %s\n", title);
        for (const Record& record : recorder.since(shown)) {
            ++shown;
            const bool fromAgent = record.payload.starts_with(R"({"type":"zarvik.)");
            const bool fromFence = record.payload.starts_with("fence");
            if (record.kind == Record::Kind::message && !fromAgent && !fromFence) {
                line(record.method + " " + record.payload);
            } else if (record.kind == Record::Kind::data) {
                // A picture's file is as long as the platform makes it.
                line("data " + record.method +
                     (record.method == "pixels" ? ", bytes: " + std::to_string(record.bytes.size()) : ""));
            } else if (record.kind >= Record::Kind::info) {
                const char* const kinds[] = {"info", "warning", "error"};
                line(kinds[static_cast<int>(record.kind) - static_cast<int>(Record::Kind::info)] +
                     record.payload.substr(record.payload.find(' ')));
            }
        }
        std::fflush(stdout);
    }

    /// A script's result, once everything that was asked for before has been done.
    std::string evaluate(const char* script) {
        const std::string id = "fence" + std::to_string(++fences) + ",";
        plugin.WebView_executeJavaScript(view, script, id.substr(0, id.size() - 1).c_str());
        const auto answer =
            recorder.waitFor([&](const Record& record) { return record.payload.starts_with(id); }, shown);
        return answer ? answer->payload.substr(id.size()) : "no answer";
    }

    void fence() { evaluate("0"); }

    /// Asks the page until it has the size, and prints what it says at last.
    void size(const std::string& expected) {
        std::string size;
        for (int attempt = 0; attempt < 250 && size != expected; ++attempt) {
            size = evaluate("innerWidth + 'x' + innerHeight + (document.hidden ? ' hidden' : '')");
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        line(size);
    }

    void waitForLoad() {
        const auto ended = [](const Record& record) {
            return record.method == "HandleLoadFinished" || record.method == "HandleLoadFailed";
        };
        if (!recorder.waitFor(ended, shown)) {
            line("no end of the load");
        }
    }

    void cookies() {
        const auto set = [&](const char* cookie) {
            line(plugin.WebView_setCookie(cookie) ? "set" : "not set");
        };
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

    void scripts() {
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

    void load(const char* title, const std::string& url) {
        plugin.WebView_loadUrl(view, url.c_str());
        waitForLoad();
        fence();
        show(title);
    }

    void userAgents() {
        const auto userAgent = [&] { return evaluate("navigator.userAgent"); };
        const std::string usual = userAgent();
        plugin.WebView_globallySetUserAgent("agent/1");
        line(userAgent());
        plugin.WebView_globallySetUserAgentToMobile(true);
        line(userAgent());
        plugin.WebView_globallySetUserAgentToMobile(false);
        line(!usual.empty() && userAgent() == usual ? "the default again" : userAgent());
        show("user agents");
    }

    void places() {
        size("320x240");
        plugin.WebView_setRect(view, 5, 6, 200, 100);
        size("200x100");
        plugin.WebView_getRawTextureData(view, "pixels");
        recorder.waitFor([](const Record& record) { return record.method == "pixels"; }, shown);
        plugin.WebView_setVisible(view, false);
        size("200x100 hidden");
        plugin.WebView_setVisible(view, true);
        size("200x100");
        show("rectangle and visibility");
    }

    void navigation() {
        load("a server that is not there", "http://127.0.0.1:2/");
        load("a PDF that cannot be had", "ftp://127.0.0.1/document.pdf");
        load("no URL at all", "nothing");
        load("a PDF from the network", server + "paper.pdf");
        load("a PDF that the server refuses", server + "refused.pdf");
        plugin.WebView_loadUrlWithHeaders(view, "http://127.0.0.1:2/",
                                          "Good: one\nBad\nWorse: a: b\nNot so: good");
        waitForLoad();
        show("headers");
    }

    void locals() {
        load("page.html", folder + "page.html");
        load("missing.html", folder + "missing.html");
        plugin.WebView_canGoBack(view);
        plugin.WebView_canGoForward(view);
        fence();
        show("history");
    }

    const PluginExports& plugin;
    Recorder& recorder;
    const std::string folder;
    const std::string server;
    UwpWebView* view = nullptr;
    std::size_t shown = 0;
    int fences = 0;
};

}  // namespace

Recorder& connectRecorder(const PluginExports& plugin) {
    plugin.WebView_setLogFunctions(log<Record::Kind::info>, log<Record::Kind::warning>,
                                   log<Record::Kind::error>);
    plugin.WebView_setSendMessageFunction([](const char* target, const char* method, const char* payload) {
        add({.kind = Record::Kind::message, .target = target, .method = method, .payload = payload});
    });
    plugin.WebView_setDataResultCallback([](const char* target, const char* id, const std::uint8_t* bytes,
                                            std::int32_t length) {
        add({.kind = Record::Kind::data, .target = target, .method = id, .bytes = {bytes, bytes + length}});
    });
    return recorder;
}

void playScenario(const PluginExports& plugin, Recorder& recorder, const std::string& folder,
                  const std::string& server) {
    Player(plugin, recorder, folder, server).play();
}
