#include "offscreen/PixelCopy.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>

namespace {

/// A texture of more bytes than this, of 4K for example, is written past the caches that all processors
/// share: it would drive out of them what the page is painted with. A smaller one stays there until the
/// engine reads it.
constexpr std::size_t mostCachedBytes = std::size_t{16} << 20;

void copyPastCaches(std::span<const std::uint8_t> source, std::uint8_t* target) {
#if __has_builtin(__builtin_nontemporal_store)
    using Block = std::uint8_t __attribute__((vector_size(16)));
    const std::size_t beyondBlock = reinterpret_cast<std::uintptr_t>(target) % sizeof(Block);
    const std::size_t head = std::min(beyondBlock == 0 ? 0 : sizeof(Block) - beyondBlock, source.size());
    std::memcpy(target, source.data(), head);
    source = source.subspan(head);
    target += head;
    for (; source.size() >= sizeof(Block); source = source.subspan(sizeof(Block)), target += sizeof(Block)) {
        Block block;
        std::memcpy(&block, source.data(), sizeof(Block));
        __builtin_nontemporal_store(block, reinterpret_cast<Block*>(target));
    }
    // Such writes keep no order with the others of their thread.
    std::atomic_thread_fence(std::memory_order_seq_cst);
#endif
    if (!source.empty()) {
        std::memcpy(target, source.data(), source.size());
    }
}

/// Calls copyRow(row, bytes) for the rows that both the source and a target of this size have, with the bytes
/// that exist of each.
template <typename CopyRow>
void forEachRow(const PixelView& source, std::size_t targetWidth, std::size_t targetHeight, CopyRow copyRow) {
    const std::size_t sourceWidth = std::max(source.width, 0);
    const std::size_t sourceHeight = std::max(source.height, 0);
    const std::size_t rowBytes = std::min(sourceWidth, targetWidth) * bytesPerPixel;
    const std::size_t rows = std::min(sourceHeight, targetHeight);
    for (std::size_t row = 0; row < rows; ++row) {
        const std::size_t offset = row * sourceWidth * bytesPerPixel;
        if (offset >= source.bytes.size()) {
            return;
        }
        copyRow(row, source.bytes.subspan(offset, std::min(rowBytes, source.bytes.size() - offset)));
    }
}

}  // namespace

void copyToTexture(const PixelView& source, std::uint8_t* texture, std::uint32_t rowPitch,
                   std::uint32_t textureWidth, std::uint32_t textureHeight) {
    const std::size_t textureBytes = std::size_t{textureWidth} * textureHeight * bytesPerPixel;
    // The pitch is in bytes and the width in pixels; a driver that reports the one as the other, or nothing,
    // has no padding.
    const bool mistaken = rowPitch == textureWidth || rowPitch == 0;
    // Without padding on either side, one copy does.
    const bool sameSize =
        std::cmp_equal(source.width, textureWidth) && std::cmp_equal(source.height, textureHeight);
    const bool alike = sameSize && rowPitch == textureWidth * bytesPerPixel;
    const auto copy = [pastCaches = textureBytes > mostCachedBytes](std::span<const std::uint8_t> bytes,
                                                                    std::uint8_t* target) {
        if (pastCaches) {
            copyPastCaches(bytes, target);
        } else {
            std::ranges::copy(bytes, target);
        }
    };
    if ((mistaken || alike) && source.bytes.size() == textureBytes) {
        copy(source.bytes, texture);
        return;
    }
    forEachRow(
        source, textureWidth, textureHeight,
        [&](std::size_t row, std::span<const std::uint8_t> bytes) { copy(bytes, texture + row * rowPitch); });
}

std::vector<std::uint8_t> fitPixels(const PixelView& source, std::int32_t width, std::int32_t height,
                                    RowOrder order) {
    const std::size_t targetWidth = std::max(width, 0);
    const std::size_t targetHeight = std::max(height, 0);
    const std::size_t targetRowBytes = targetWidth * bytesPerPixel;
    std::vector<std::uint8_t> target(targetRowBytes * targetHeight);
    forEachRow(source, targetWidth, targetHeight, [&](std::size_t row, std::span<const std::uint8_t> bytes) {
        const std::size_t targetRow = order == RowOrder::topDown ? row : targetHeight - 1 - row;
        std::ranges::copy(bytes, target.data() + targetRow * targetRowBytes);
    });
    return target;
}
