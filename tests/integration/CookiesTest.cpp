// Cookies, stored data and the user agent through the exports.

#include <unistd.h>

#include <algorithm>
#include <future>
#include <nlohmann/json.hpp>
#include <thread>

#include "support/EngineTest.h"

namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using nlohmann::json;
using zarvik::host::Engine;
using zarvik::host::LoadResult;
using zarvik::host::Record;
using zarvik::host::View;

class CookiesTest : public EngineTest {
  protected:
    void SetUp() override { plugin().WebView_deleteCookies(url.c_str(), nullptr); }

    json cookies(const std::string& url, const char* name = nullptr) {
        char* const text = plugin().WebView_getCookies(url.c_str(), name);
        const auto parsed = json::parse(text, nullptr, false);
        EXPECT_FALSE(parsed.is_discarded()) << text;
        free(text);
        return parsed.at("Items");
    }

    bool set(const json& cookie) { return plugin().WebView_setCookie(cookie.dump().c_str()); }

    const std::string url = server.url("/");
};

json session(const std::string& name, const std::string& value) {
    return {{"Name", name}, {"Value", value}, {"Domain", "127.0.0.1"}, {"Path", "/"}};
}

/// In a process that has not changed the user agent yet: two threads do, of which one is the UI thread.
void changeTheUserAgentTwiceAtOnce() {
    alarm(60);
    Engine engine({});
    View view(engine, {64, 48});
    view.loadHtml("<p>page");
    const bool isLoaded = view.waitForLoad().outcome == LoadResult::Outcome::finished;
    std::promise<void> busy;
    engine.recorder().setObserver([&](const Record& record) {
        if (record.payload == "change") {
            busy.set_value();
            std::this_thread::sleep_for(300ms);
            engine.plugin().WebView_globallySetUserAgent("Callback/1");
        }
    });
    const auto from = engine.recorder().position();
    engine.plugin().WebView_executeJavaScript(view.handle(), "zarvik.postMessage('change')", nullptr);
    busy.get_future().wait();
    engine.plugin().WebView_globallySetUserAgent("Engine/1");
    engine.recorder().waitFor([](const Record& record) { return record.payload == "change"; }, from);
    engine.plugin().WebView_globallySetUserAgentToMobile(0);
    const auto records = engine.recorder().since(from);
    const bool isRestored = std::ranges::none_of(
        records, [](const Record& record) { return record.kind == Record::Kind::error; });
    _exit(isLoaded && isRestored ? 0 : 1);
}

}  // namespace

TEST_F(CookiesTest, RoundTripAndDeletion) {
    const auto later = std::time(nullptr) + 3600;
    ASSERT_TRUE(set(session("one", "1")));
    json full = session("two", R"(v=2 "x\", y)");
    full.update({{"ExpirationDate", later}, {"HttpOnly", true}, {"Secure", false}});
    ASSERT_TRUE(set(full));
    EXPECT_EQ(cookies(url).size(), 2U);
    const auto two = cookies(url, "two");
    ASSERT_EQ(two.size(), 1U);
    EXPECT_EQ(two[0]["Name"], "two");
    EXPECT_EQ(two[0]["Value"], full["Value"]);
    EXPECT_EQ(two[0]["Domain"], "127.0.0.1");
    EXPECT_EQ(two[0]["Path"], "/");
    EXPECT_EQ(two[0]["ExpirationDate"], later);
    EXPECT_EQ(two[0]["HttpOnly"], true);
    EXPECT_EQ(two[0]["Secure"], false);
    EXPECT_TRUE(cookies(url, "one").at(0)["ExpirationDate"].is_null());
    EXPECT_TRUE(cookies("http://other.invalid/").empty());

    ASSERT_TRUE(set(session("one", "changed")));
    EXPECT_EQ(cookies(url, "one").at(0)["Value"], "changed");

    plugin().WebView_deleteCookies(url.c_str(), "one");
    EXPECT_TRUE(cookies(url, "one").empty());
    EXPECT_EQ(cookies(url).size(), 1U);
    plugin().WebView_deleteCookies(url.c_str(), nullptr);
    EXPECT_TRUE(cookies(url).empty());

    full.update({{"Domain", ".Cookies.Example"}, {"Path", "/deep"}, {"Secure", true}});
    ASSERT_TRUE(set(full));
    const std::string within = "https://sub.cookies.example/deep/page";
    EXPECT_EQ(cookies(within).size(), 1U);
    EXPECT_EQ(cookies("http://cookies.example/deep").size(), 0U) << "over a connection that is not secure";
    EXPECT_EQ(cookies("https://cookies.example/other").size(), 0U);
    plugin().WebView_deleteCookies(within.c_str(), nullptr);
    EXPECT_TRUE(cookies(within).empty());
    EXPECT_EQ(errorsSince(0), std::vector<std::string>{});
}

TEST_F(CookiesTest, PagesAndTheEngineShareThem) {
    server.page("/page", "<script>document.cookie = 'fromPage=yes'; fetch('/seen')</script>");
    ASSERT_TRUE(set(session("fromEngine", "yes")));
    View view(engine, {10, 10});
    load(view, server.url("/page"));
    ASSERT_TRUE(server.waitForRequest("/seen"));
    EXPECT_NE(server.requests("/page").at(0).header("Cookie").find("fromEngine=yes"), std::string::npos);
    EXPECT_TRUE(waitUntil([&] { return cookies(url, "fromPage").size() == 1; }));

    plugin().WebView_clearAllData();
    EXPECT_TRUE(waitUntil([&] { return cookies(url).empty(); }));
}

TEST_F(CookiesTest, BadInputIsRefusedWithALogLine) {
    const std::string failed = "An error occurred while setting a cookie. Error message: ";
    std::vector<std::string> inputs{"",
                                    "no json",
                                    "[]",
                                    "{}",
                                    R"({"Name":"a"})",
                                    "{} {}",
                                    R"({"Name":"a\ud800","Value":"1","Domain":"127.0.0.1"})",
                                    R"({"a":)" + std::string(200'000, '[')};
    const std::pair<const char*, std::vector<json>> invalid[] = {
        {"Name", {"", "a;b", "a=b", "a\nb", " a", "a\x7f", 5}},
        {"Value", {"a;b", "1\n2", true}},
        {"Domain",
         {"", ".", "a b", "http://a.example", "a.example/x", "a.example:80", "..a", "a..example", "com",
          ".co.uk", "a\n.example"}},
        {"Path", {"deep", "/a;b", "/a\nb"}},
        {"ExpirationDate", {-1, 400'000'000'000, "1"}},
        {"Secure", {"true"}},
    };
    for (const auto& [key, values] : invalid) {
        for (const auto& value : values) {
            auto cookie = session("a", "1");
            cookie[key] = value;
            inputs.push_back(cookie.dump());
        }
    }
    for (const auto& input : inputs) {
        const auto text = input.substr(0, 200);
        const auto from = recorder().position();
        EXPECT_FALSE(plugin().WebView_setCookie(input.c_str())) << text;
        const auto errors = errorsSince(from);
        ASSERT_EQ(errors.size(), 1U) << text;
        EXPECT_TRUE(errors[0].starts_with(failed)) << errors[0];
    }
    const auto from = recorder().position();
    char* const none = plugin().WebView_getCookies("no url", nullptr);
    EXPECT_STREQ(none, R"({"Items": []})");
    free(none);
    EXPECT_TRUE(waitForError("An error occurred while fetching the cookies for no url", from));
}

TEST_F(CookiesTest, AreAnsweredFromAnyThreadWhileAPageHangs) {
    server.page("/hang",
                "<script>onload = () => setTimeout(() => { fetch('/hanging'); setTimeout(() => { for (;;); "
                "}, 100) })</script>");
    ASSERT_TRUE(set(session("a", "1")));
    View view(engine, {10, 10});
    load(view, server.url("/hang"));
    ASSERT_TRUE(server.waitForRequest("/hanging"));
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(cookies(url).size(), 1U);
    std::thread([&] { EXPECT_EQ(cookies(url).size(), 1U); }).join();
    engine.renderThread().run([&] { EXPECT_EQ(cookies(url).size(), 1U); });

    // Also in a callback on the library's own thread, which has to carry out the question.
    std::atomic<int> fromCallback = -1;
    recorder().setObserver([&](const Record& record) {
        if (record.method == "HandleCanGoBackResult") {
            fromCallback = static_cast<int>(cookies(url).size());
        }
    });
    plugin().WebView_canGoBack(view.handle());
    EXPECT_TRUE(waitUntil([&] { return fromCallback >= 0; }));
    EXPECT_EQ(fromCallback, 1);
    recorder().setObserver(nullptr);
}

TEST_F(CookiesTest, TheUserAgentIsTheWholeProcesss) {
    const std::string mobile =
        "Mozilla/5.0 (Windows Phone 10.0; Android 6.0.1; Microsoft; RM-1152) AppleWebKit/537.36 (KHTML, like "
        "Gecko) "
        "Chrome/52.0.2743.116 Mobile Safari/537.36";
    View view(engine, {10, 10});
    int page = 0;
    const auto seen = [&] {
        const auto path = "/agent" + std::to_string(++page);
        server.page(path, "<p>agent");
        load(view, server.url(path));
        return server.requests(path).at(0).header("User-Agent");
    };
    const auto original = seen();
    EXPECT_NE(original.find("AppleWebKit"), std::string::npos);
    plugin().WebView_globallySetUserAgent("Agent/1.0 (a; b (c\\)) d) x");
    EXPECT_EQ(seen(), "Agent/1.0 (a; b (c\\)) d) x");
    plugin().WebView_globallySetUserAgentToMobile(true);
    EXPECT_EQ(seen(), mobile);
    plugin().WebView_globallySetUserAgentToMobile(false);
    EXPECT_EQ(seen(), original);
    // What the browser engine would ignore.
    for (const std::string& text : {"a\nb"s, "a\r\nX-Forged: 1"s, "(comment first)"s, "a (open"s, "a; b"s,
                                    "a/b/c"s, " a"s, "a "s, "ü"s, "[x]"s, "a " + std::string(1 << 20, '(')}) {
        const auto from = recorder().position();
        plugin().WebView_globallySetUserAgent(text.c_str());
        EXPECT_EQ(errorsSince(from).size(), 1U) << text.substr(0, 100);
    }
    EXPECT_EQ(seen(), original);
}

TEST_F(CookiesTest, StorageCanBeSwitchedOffForNewViews) {
    server.page("/storage", "<script>fetch(window.indexedDB ? '/with' : '/without')</script>");
    plugin().WebView_setStorageEnabled(false);
    View without(engine, {10, 10});
    load(without, server.url("/storage"));
    EXPECT_TRUE(server.waitForRequest("/without"));
    plugin().WebView_setStorageEnabled(true);
    load(without, server.url("/storage"));
    EXPECT_TRUE(server.requests("/with").empty());
    View with(engine, {10, 10});
    load(with, server.url("/storage"));
    EXPECT_TRUE(server.waitForRequest("/with"));
}

TEST(UserAgentTest, TheFirstChangeMayComeFromTwoThreadsAtOnce) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(changeTheUserAgentTwiceAtOnce(), testing::ExitedWithCode(0), "");
}
