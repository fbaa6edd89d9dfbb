#include <winrt/Windows.UI.Xaml.Controls.h>

#include <thread>

#include "PageTest.h"

using namespace std::chrono_literals;
using winrt::Windows::Foundation::Uri;

class NavigationTrackerTest : public PageTest {
  protected:
    Uri uri(std::string const& path) const { return Uri(winrt::to_hstring(server.url(path))); }

    /// Loads a page and does something on the user-interface thread when the page has been requested and the
    /// thread, always busy, has not heard yet that its load has started.
    void loadAndInterrupt(std::string const& path, std::function<void()> const& interrupt) {
        auto const earlier = server.requests(path).size();
        std::promise<bool> ending;
        int looks = 0;
        std::function<void()> const look = [&] {
            constexpr int most = 1000;
            std::this_thread::sleep_for(20ms);
            bool const requested = server.requests(path).size() > earlier;
            if (!requested && ++looks < most) {
                return runtime::ui_thread::instance().post(look);
            }
            interrupt();
            ending.set_value(requested);
        };
        onUIThread([&] {
            view.Navigate(uri(path));
            look();
        });
        EXPECT_TRUE(ending.get_future().get());
    }

    WebView const view = makeView();
};

TEST_F(NavigationTrackerTest, AStartToldTooLateIsNoOtherNavigation) {
    server.stalledPage("/slow");
    server.page("/next", "<p>next");
    auto const events = std::make_shared<Texts>();
    onUIThread([&] {
        view.NavigationStarting([events](auto const&, auto const& arguments) {
            events->push_back("starting " + winrt::to_string(arguments.Uri().Path()));
        });
        view.NavigationCompleted([events](auto const&, auto const& arguments) {
            events->push_back(arguments.IsSuccess() ? "success" : "failure");
        });
    });
    Texts const expected{"starting /slow", "failure", "starting /next", "success"};

    loadAndInterrupt("/slow", [&] { view.Stop(); });
    load(view, server.url("/next"));
    EXPECT_EQ(onUIThread([&] { return std::exchange(*events, {}); }), expected);

    loadAndInterrupt("/slow", [&] { view.Navigate(uri("/next")); });
    EXPECT_TRUE(comesTrue([&] { return events->size() >= expected.size(); }));
    EXPECT_EQ(onUIThread([&] { return std::exchange(*events, {}); }), expected);
}
