#include "Jpeg.h"

#include <cstddef>
#include <cstdio>
// Needs the two above.
#include <jpeglib.h>

#include <stdexcept>

namespace zarvik::bench {

namespace {

/// The library's functions are C, which an exception passes through since they own nothing but the decoder's
/// memory.
[[noreturn]] void fail(j_common_ptr) {
    throw std::runtime_error("A picture could not be decoded.");
}

class Decoder {
  public:
    Decoder() {
        state.err = jpeg_std_error(&errors);
        errors.error_exit = fail;
        jpeg_create_decompress(&state);
    }
    ~Decoder() { jpeg_destroy_decompress(&state); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    jpeg_decompress_struct state{};

  private:
    jpeg_error_mgr errors{};
};

}  // namespace

JpegSize decodeJpeg(std::span<const std::uint8_t> jpeg, std::vector<std::uint8_t>& pixels) {
    Decoder decoder;
    auto& state = decoder.state;
    jpeg_mem_src(&state, jpeg.data(), jpeg.size());
    jpeg_read_header(&state, TRUE);
    state.out_color_space = JCS_EXT_BGRA;
    jpeg_start_decompress(&state);
    const std::size_t stride = std::size_t{4} * state.output_width;
    pixels.resize(stride * state.output_height);
    while (state.output_scanline < state.output_height) {
        auto* row = pixels.data() + stride * state.output_scanline;
        jpeg_read_scanlines(&state, &row, 1);
    }
    const JpegSize size{.width = static_cast<int>(state.output_width),
                        .height = static_cast<int>(state.output_height)};
    jpeg_finish_decompress(&state);
    return size;
}

}  // namespace zarvik::bench
