#pragma once

namespace zarvik::player {

#pragma clang diagnostic push
#pragma clang diagnostic ignored "-Wc23-extensions"

/// The page that the player shows when it is given none.
// clang-format off
inline constexpr char welcomeHtml[] = {
#embed "welcome.html"
    , 0};
// clang-format on

#pragma clang diagnostic pop

}  // namespace zarvik::player
