#include "png_encoder.h"

#include <gdk-pixbuf/gdk-pixbuf.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "glib_ptr.h"

namespace runtime {

namespace {

/// The colour that was multiplied with `alpha` (not zero), rounded to the nearest.
uint8_t divide(uint8_t premultiplied, uint8_t alpha) {
    return static_cast<uint8_t>(std::min((premultiplied * 255 + alpha / 2) / alpha, 255));
}

/// BGRA premultiplied becomes RGBA straight, in place. What cannot be seen becomes black.
void to_straight_rgba(std::vector<uint8_t>& pixels) {
    for (auto pixel = pixels.begin(); pixel != pixels.end(); pixel += 4) {
        std::swap(pixel[0], pixel[2]);
        uint8_t const alpha = pixel[3];
        if (alpha == 0) {
            std::fill_n(pixel, 3, uint8_t{0});
        } else if (alpha != 255) {
            std::transform(pixel, pixel + 3, pixel,
                           [alpha](uint8_t colour) { return divide(colour, alpha); });
        }
    }
}

}  // namespace

stream_content encode_png(unencoded_picture picture) {
    to_straight_rgba(picture.pixels);
    auto const pixbuf = gobject_ptr<GdkPixbuf>::adopt(gdk_pixbuf_new_from_data(
        picture.pixels.data(), GDK_COLORSPACE_RGB, TRUE, 8, static_cast<int>(picture.width),
        static_cast<int>(picture.height), static_cast<int>(picture.width * 4), nullptr, nullptr));
    // Half the time of the default level for files that are larger, but never travel.
    constexpr char const* compression = "3";
    auto const dpiX = std::to_string(std::lround(picture.dpi_x));
    auto const dpiY = std::to_string(std::lround(picture.dpi_y));
    char* encoded = nullptr;
    gsize length = 0;
    glib_error error;
    gdk_pixbuf_save_to_buffer(pixbuf.get(), &encoded, &length, "png", error.put(), "compression", compression,
                              "x-dpi", dpiX.c_str(), "y-dpi", dpiY.c_str(), nullptr);
    if (error) {
        throw winrt::hresult_error(E_FAIL, winrt::to_hstring(error.message()));
    }
    return {std::shared_ptr<uint8_t const>(reinterpret_cast<uint8_t*>(encoded), release_with<g_free>{}),
            length};
}

}  // namespace runtime
