#include <gtest/gtest.h>
#include <winrt/Windows.Web.Http.Filters.h>

#include <atomic>
#include <future>
#include <set>
#include <thread>

#include "codeOf.h"
#include "ui_thread.h"

using namespace std::chrono_literals;
using namespace winrt::Windows::Web::Http;
using runtime::ui_thread;
using winrt::Windows::Foundation::Uri;

namespace {

HttpCookieManager manager() {
    return Filters::HttpBaseProtocolFilter().CookieManager();
}

HttpCookie makeCookie(const wchar_t* name, const wchar_t* value, const wchar_t* domain = L"cookies.example",
                      const wchar_t* path = L"/") {
    HttpCookie cookie(name, domain, path);
    cookie.Value(value);
    return cookie;
}

/// The cookies for a URI as "name=value" lines, sorted.
std::set<std::wstring> cookiesFor(const wchar_t* uri) {
    std::set<std::wstring> lines;
    for (const auto& cookie : manager().GetCookies(Uri(uri))) {
        lines.insert(std::wstring(cookie.Name()) + L"=" + std::wstring(cookie.Value()));
    }
    return lines;
}

void deleteAll(const wchar_t* uri) {
    for (const auto& cookie : manager().GetCookies(Uri(uri))) {
        manager().DeleteCookie(cookie);
    }
}

using lines = std::set<std::wstring>;

class CookiesTest : public testing::Test {
  protected:
    void TearDown() override {
        for (const auto* uri :
             {L"https://cookies.example/", L"https://cookies.example/deep/x", L"https://sub.cookies.example/",
              L"http://127.0.0.1/", L"http://localhost/"}) {
            deleteAll(uri);
        }
    }
};

}  // namespace

TEST_F(CookiesTest, KeepsEveryField) {
    auto cookie = makeCookie(L"name", L"a value=\"x\", y", L".Cookies.Example", L"/deep");
    const auto expires = winrt::clock::from_time_t(winrt::clock::to_time_t(winrt::clock::now()) + 3600);
    cookie.Expires(expires);
    cookie.HttpOnly(true);
    cookie.Secure(true);
    EXPECT_FALSE(manager().SetCookie(cookie));

    const auto found = manager().GetCookies(Uri(L"https://sub.cookies.example/deep/page"));
    ASSERT_EQ(found.Size(), 1u);
    const auto stored = found.GetAt(0);
    EXPECT_EQ(stored.Name(), L"name");
    EXPECT_EQ(stored.Value(), L"a value=\"x\", y");
    EXPECT_EQ(stored.Domain(), L".cookies.example");
    EXPECT_EQ(stored.Path(), L"/deep");
    ASSERT_TRUE(stored.Expires());
    EXPECT_EQ(stored.Expires().Value(), expires);
    EXPECT_TRUE(stored.HttpOnly());
    EXPECT_TRUE(stored.Secure());
    EXPECT_THROW(found.GetAt(1), winrt::hresult_error);

    EXPECT_EQ(cookiesFor(L"http://cookies.example/deep"), lines{});    // not secure
    EXPECT_EQ(cookiesFor(L"https://cookies.example/other"), lines{});  // another path
}

TEST_F(CookiesTest, SessionCookieOfOneHost) {
    manager().SetCookie(makeCookie(L"a", L"1"));
    const auto found = manager().GetCookies(Uri(L"http://cookies.example"));
    ASSERT_EQ(found.Size(), 1u);
    EXPECT_FALSE(found.GetAt(0).Expires());
    EXPECT_FALSE(found.GetAt(0).HttpOnly());
    EXPECT_FALSE(found.GetAt(0).Secure());
    EXPECT_EQ(cookiesFor(L"http://sub.cookies.example/"), lines{});
    for (const auto* host : {L"127.0.0.1", L"localhost"}) {
        manager().SetCookie(makeCookie(L"b", L"2", host));
        EXPECT_EQ(cookiesFor((L"http://" + std::wstring(host) + L":8080/").c_str()), lines{L"b=2"});
    }
}

TEST_F(CookiesTest, ReplacesTheSameCookieOnly) {
    EXPECT_FALSE(manager().SetCookie(makeCookie(L"a", L"1")));
    EXPECT_TRUE(manager().SetCookie(makeCookie(L"a", L"2")));
    EXPECT_FALSE(manager().SetCookie(makeCookie(L"a", L"3", L"cookies.example", L"/deep")));
    EXPECT_FALSE(manager().SetCookie(makeCookie(L"A", L"4")));
    EXPECT_EQ(cookiesFor(L"http://cookies.example/deep/x"), (lines{L"a=2", L"a=3", L"A=4"}));
}

TEST_F(CookiesTest, DeletesWhateverTheValueIs) {
    manager().SetCookie(makeCookie(L"a", L"1"));
    manager().SetCookie(makeCookie(L"b", L"2"));
    manager().DeleteCookie(makeCookie(L"a", L"another value"));
    EXPECT_EQ(cookiesFor(L"http://cookies.example/"), lines{L"b=2"});
    manager().DeleteCookie(makeCookie(L"missing", L""));

    auto expired = makeCookie(L"b", L"2");
    expired.Expires(winrt::clock::from_time_t(1));
    manager().SetCookie(expired);
    EXPECT_EQ(cookiesFor(L"http://cookies.example/"), lines{});
}

TEST_F(CookiesTest, RefusesWhatTheEngineWouldDrop) {
    const auto expectRefusal = [](const wchar_t* what, auto action) {
        EXPECT_EQ(codeOf(action), E_INVALIDARG) << winrt::to_string(what);
    };
    for (const auto* name : {L"", L"a;b", L"a=b", L"a\nb", L" a", L"a\u007f"}) {
        expectRefusal(name, [&] { HttpCookie(name, L"cookies.example", L"/"); });
    }
    for (const auto* domain : {L"", L".", L"a b", L"http://a.example", L"a.example/x", L"a.example:80",
                               L"..a", L"a..example", L"a;b", L"com", L".co.uk", L"a\n.example"}) {
        expectRefusal(domain, [&] { HttpCookie(L"a", domain, L"/"); });
    }
    for (const auto* path : {L"deep", L"/a;b", L"/a\nb"}) {
        expectRefusal(path, [&] { HttpCookie(L"a", L"cookies.example", path); });
    }
    expectRefusal(L"a;b", [] { makeCookie(L"a", L"a;b"); });
    expectRefusal(L"a\\nb", [] { makeCookie(L"a", L"a\nb"); });
    for (const auto* uri : {L"file:///x", L"about:blank", L"ftp://cookies.example/"}) {
        expectRefusal(uri, [&] { manager().GetCookies(Uri(uri)); });
    }
    auto beyond = makeCookie(L"a", L"1");
    beyond.Expires(winrt::clock::from_time_t(400'000'000'000));
    expectRefusal(L"the year 14645", [&] { manager().SetCookie(beyond); });
    EXPECT_EQ(HttpCookie(L"a", L"KÜCHE.example", L"").Domain(), L"xn--kche-0ra.example");
    EXPECT_EQ(HttpCookie(L"a", L"cookies.example", L"").Path(), L"/");
}

TEST_F(CookiesTest, WorksFromManyThreadsAtOnce) {
    std::vector<std::thread> threads;
    std::atomic<int> wrong = 0;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([i, &wrong] {
            const auto name = L"thread" + std::to_wstring(i);
            const auto work = [&] {
                for (int turn = 0; turn < 20; ++turn) {
                    const auto value = std::to_wstring(turn);
                    manager().SetCookie(makeCookie(name.c_str(), value.c_str()));
                    wrong += !cookiesFor(L"http://cookies.example/").contains(name + L"=" + value);
                }
                manager().DeleteCookie(makeCookie(name.c_str(), L""));
            };
            i % 4 == 0 ? ui_thread::instance().invoke(work) : work();
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(cookiesFor(L"http://cookies.example/"), lines{});
}

// The call that was given up still ends, long after the thread that waited for it has left.
TEST_F(CookiesTest, GivesUpWhenTheUserInterfaceThreadIsStuck) {
    manager().SetCookie(makeCookie(L"a", L"1"));
    std::promise<void> release;
    ui_thread::instance().post([stuck = release.get_future().share()] { stuck.wait(); });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(codeOf([] { cookiesFor(L"http://cookies.example/"); }), RPC_E_TIMEOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, ui_thread::patience + 2s);
    release.set_value();
    EXPECT_EQ(cookiesFor(L"http://cookies.example/"), lines{L"a=1"});
}
