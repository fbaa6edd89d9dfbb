#include <algorithm>
#include <array>

#include "PageTest.h"
#include "element_tree.h"
#include "web_view.h"

using winrt::Windows::UI::Color;
using winrt::Windows::UI::Colors;

namespace {

using Pixel = std::array<uint8_t, 4>;  // blue, green, red, alpha; premultiplied

constexpr Pixel nothing{0, 0, 0, 0};
constexpr Pixel white{255, 255, 255, 255};
constexpr Pixel red{0, 0, 255, 255};
constexpr Pixel halfRed{0, 0, 128, 128};
constexpr Pixel redOnWhite{127, 127, 255, 255};

/// A page whose left half is painted, so that two of them show whether the first one is still seen.
std::wstring page(std::wstring const& side, std::wstring const& color) {
    return L"<style>body { margin: 0 } div { position: absolute; " + side + L": 0; top: 0; width: 50%; " +
           L"height: 100%; background: " + color + L" }</style><div></div>";
}

}  // namespace

class BackgroundTest : public PageTest {
  protected:
    static runtime::picture picture(WebView const& view) {
        auto const result = std::make_shared<std::promise<runtime::picture>>();
        onUIThread([&] {
            runtime::object_of<runtime::web_view_object>(view).request_picture(
                200, 100, [result](auto const& taken) { result->set_value(taken); });
        });
        return result->get_future().get();
    }

    static bool near(uint8_t const* pixel, Pixel const& wanted) {
        return std::equal(wanted.begin(), wanted.end(), pixel,
                          [](int left, int right) { return std::abs(left - right) <= 1; });
    }

    /// Whether the view comes to show one colour in its left half and another one in its right half, and
    /// nothing else.
    static bool comesToShow(WebView const& view, Pixel const& left, Pixel const& right) {
        return comesToShow([&] { return picture(view); }, left, right);
    }

    template <typename Take>
    static bool comesToShow(Take take, Pixel const& left, Pixel const& right) {
        runtime::picture shown;
        for (int attempt = 0; attempt < 50; ++attempt) {
            shown = take();
            bool right_colors = shown.width == 200 && shown.height == 100;
            for (int i = 0; right_colors && i < 200 * 100; ++i) {
                right_colors = near(shown.pixels.get() + std::ptrdiff_t{4} * i, i % 200 < 100 ? left : right);
            }
            if (right_colors) {
                return true;
            }
        }
        auto const* const pixels = shown.pixels.get();
        ADD_FAILURE() << testing::PrintToString(std::vector<int>(pixels + 200, pixels + 204)) << " "
                      << testing::PrintToString(std::vector<int>(pixels + 600, pixels + 604));
        return false;
    }

    static void setBackground(WebView const& view, Color color) {
        onUIThread([&] { view.DefaultBackgroundColor(color); });
    }
};

TEST_F(BackgroundTest, IsSeenWhereThePagePaintsNothing) {
    auto const view = makeView();
    EXPECT_EQ(onUIThread([&] { return view.DefaultBackgroundColor(); }), Colors::White());
    loadText(view, page(L"left", L"rgb(255 0 0 / 50%)"));
    EXPECT_TRUE(comesToShow(view, redOnWhite, white));

    // Each change while the page is shown, and over a navigation: nothing of what was there before remains.
    setBackground(view, Colors::Transparent());
    EXPECT_EQ(onUIThread([&] { return view.DefaultBackgroundColor(); }), Colors::Transparent());
    EXPECT_TRUE(comesToShow(view, halfRed, nothing));
    loadText(view, page(L"right", L"red"));
    EXPECT_TRUE(comesToShow(view, nothing, red));
    loadText(view, page(L"left", L"rgb(255 0 0 / 50%)"));
    EXPECT_TRUE(comesToShow(view, halfRed, nothing));
    eval(view, L"document.querySelector('div').style.cssText = 'left: auto; right: 0'");
    EXPECT_TRUE(comesToShow(view, nothing, halfRed));
    setBackground(view, Colors::White());
    EXPECT_TRUE(comesToShow(view, white, redOnWhite));
    loadText(view, page(L"left", L"red"));
    EXPECT_TRUE(comesToShow(view, red, white));
    setBackground(view, {255, 255, 0, 0});
    loadText(view, page(L"left", L"white"));
    EXPECT_TRUE(comesToShow(view, white, red));
}
