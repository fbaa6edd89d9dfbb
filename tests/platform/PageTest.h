#pragma once

#include <gtest/gtest.h>
#include <winrt/Windows.UI.Xaml.Controls.h>

#include <functional>
#include <future>
#include <string>
#include <vector>

#include "support/TestServer.h"
#include "ui_thread.h"

/// The end of a call: its text, or its failure's code and message.
struct Answer {
    std::wstring text;
    winrt::hresult code = S_OK;

    friend bool operator==(Answer const&, Answer const&) = default;
};
void PrintTo(Answer const& answer, std::ostream* stream);

/// A test of web views through the platform's own interface. The test's thread waits while the
/// user-interface thread works.
class PageTest : public testing::Test {
  protected:
    using WebView = winrt::Windows::UI::Xaml::Controls::WebView;

    /// What failed calls give, beside the codes of the platform's headers.
    static constexpr winrt::hresult scriptThrew = static_cast<HRESULT>(0x80020101U);

    template <typename Function>
    static auto onUIThread(Function function) {
        return runtime::ui_thread::instance().invoke(std::move(function), std::chrono::minutes(1));
    }

    /// Whether the condition, asked on the user-interface thread, comes true within some seconds.
    static bool comesTrue(std::function<bool()> const& condition);

    /// A view with a size, so that it has a picture.
    static WebView makeView();

    /// How the navigation that `start` begins ends: "success", or its WebErrorStatus.
    static std::string ending(WebView const& view, std::function<void()> const& start);

    /// Loads a page and waits for its end, which must be a success.
    static void load(WebView const& view, std::string const& url);
    static void loadText(WebView const& view, std::wstring const& html);

    /// Calls a function of the page and waits for the answer.
    static Answer call(WebView const& view, std::wstring const& function, std::wstring const& argument);
    static Answer eval(WebView const& view, std::wstring const& text);

    /// Starts the call; the answer comes later.
    static std::future<Answer> startCall(WebView const& view, std::wstring const& function,
                                         std::wstring const& argument);
    static Answer wait(std::future<Answer>& answer);

    using Texts = std::vector<std::string>;
    /// Gives every page of a view an object `bridge`. What pages send is collected, each message behind the
    /// number of the navigation whose object got it.
    static std::shared_ptr<Texts> addBridges(WebView const& view);

    /// A script that replaces all functions of the built-in types.
    static char const* const hostileScript;

    TestServer server;
};
