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

HttpCookie makeCookie(const wchar_t* name, const wchar_t* value) {
    HttpCookie cookie(name, L"cookies.example", L"/");
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

using lines = std::set<std::wstring>;

}  // namespace

TEST(CookiesTest, WorksFromManyThreadsAtOnce) {
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
TEST(CookiesTest, GivesUpWhenTheUserInterfaceThreadIsStuck) {
    manager().SetCookie(makeCookie(L"a", L"1"));
    std::promise<void> release;
    ui_thread::instance().post([stuck = release.get_future().share()] { stuck.wait(); });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(codeOf([] { cookiesFor(L"http://cookies.example/"); }), RPC_E_TIMEOUT);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, ui_thread::patience + 2s);
    release.set_value();
    EXPECT_EQ(cookiesFor(L"http://cookies.example/"), lines{L"a=1"});
    manager().DeleteCookie(makeCookie(L"a", L""));
}
