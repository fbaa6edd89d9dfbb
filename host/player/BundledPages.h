#pragma once

namespace zarvik::player {

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wc23-extensions"

// clang-format off

/// What the player shows when it is given no page.
inline constexpr char welcomeHtml[] = {
#embed "pages/welcome.html"
    , 0};

/// How to use the player.
inline constexpr char guideHtml[] = {
#embed "pages/guide.html"
    , 0};

/// The toolbar.
inline constexpr char toolbarHtml[] = {
#embed "pages/toolbar.html"
    , 0};

// clang-format on

#pragma clang diagnostic pop

}  // namespace zarvik::player
