#include "support/TestPages.h"

#include <algorithm>

using zarvik::host::Image;

const std::string patternPage =
    R"(<style>html, body { margin: 0; overflow: hidden }</style><canvas></canvas><script>
    const canvas = document.querySelector('canvas');
    canvas.style.display = 'block';
    const draw = () => {
        canvas.width = innerWidth;
        canvas.height = innerHeight;
        const context = canvas.getContext('2d');
        const image = context.createImageData(canvas.width, canvas.height);
        for (let y = 0, i = 0; y < canvas.height; y++) {
            for (let x = 0; x < canvas.width; x++) {
                image.data[i++] = x & 255;
                image.data[i++] = y & 255;
                image.data[i++] = (x >> 8) * 16 + (y >> 8) * 4 + (x ^ y) % 3;
                image.data[i++] = 255;
            }
        }
        context.putImageData(image, 0, 0);
    };
    onresize = draw;
    draw();
</script>)";

Image testPattern(int width, int height) {
    Image image(width, height);
    std::size_t i = 0;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            image.pixels[i++] = static_cast<std::uint8_t>((x >> 8) * 16 + (y >> 8) * 4 + (x ^ y) % 3);
            image.pixels[i++] = static_cast<std::uint8_t>(y);
            image.pixels[i++] = static_cast<std::uint8_t>(x);
            image.pixels[i++] = 255;
        }
    }
    return image;
}

Image upsideDown(const Image& image) {
    Image result(image.width, image.height);
    const auto row = static_cast<std::ptrdiff_t>(image.width) * 4;
    for (int y = 0; y < image.height; ++y) {
        std::copy_n(image.pixels.begin() + row * y, row,
                    result.pixels.begin() + row * (image.height - 1 - y));
    }
    return result;
}

std::string colourPage(int red, int green, int blue) {
    return "<body style='background: rgb(" + std::to_string(red) + ", " + std::to_string(green) + ", " +
           std::to_string(blue) + ")'>";
}

bool isFilled(const Image& image, int red, int green, int blue) {
    const Image::Pixel expected{static_cast<std::uint8_t>(blue), static_cast<std::uint8_t>(green),
                                static_cast<std::uint8_t>(red), 255};
    for (std::size_t i = 0; i < image.pixels.size(); i += 4) {
        if (!std::equal(expected.begin(), expected.end(),
                        image.pixels.begin() + static_cast<std::ptrdiff_t>(i))) {
            return false;
        }
    }
    return !image.pixels.empty();
}

const std::string animatedPage = R"(<style>
    @keyframes move { from { transform: none } to { transform: translateX(200px) } }
    div { width: 100px; height: 100px; background: red; animation: move 1s linear infinite }
</style><div></div>)";
