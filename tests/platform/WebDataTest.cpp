#include <gtest/gtest.h>
#include <winrt/Windows.UI.Xaml.Controls.h>

#include <cstdlib>

#include "await.h"
#include "codeOf.h"

using winrt::Windows::UI::Xaml::Controls::WebView;

// An app may ask for it where no web view can be made.
TEST(WebDataTest, ClearingFailsWhereTheSandboxDoesNotStart) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");  // in a process that has no web context yet
    auto const clear = [] {
        setenv("PATH", "/nowhere", 1);
        unsetenv("WEBVIEW_SANDBOX");
        std::exit(codeOf([] { await(WebView::ClearTemporaryWebDataAsync()); }) == E_FAIL ? 7 : 1);
    };
    EXPECT_EXIT(clear(), testing::ExitedWithCode(7), "");
}
