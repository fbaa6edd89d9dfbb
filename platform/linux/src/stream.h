#pragma once

#include <atomic>
#include <mutex>
#include <optional>
#include <span>

#include <winrt/Windows.Storage.Streams.h>

#include "picture.h"

namespace runtime {

/// The implementation of a stream: content that can be read at any place, and the place at which reading and
/// writing in order stand. Any thread.
class stream_object : public winrt::impl::object {
  public:
    virtual uint64_t size() const = 0;

    /// Reads from a place on; fewer bytes than wanted only where the content ends.
    virtual size_t read(uint64_t place, std::span<uint8_t> target) const = 0;

    /// Writes at a place; what lies between the end and that place becomes zero. E_ACCESSDENIED where the
    /// content can only be read.
    virtual void write(uint64_t place, std::span<uint8_t const> source);

    uint64_t position() const noexcept { return current; }
    void seek(uint64_t place) noexcept { current = place; }

  private:
    std::atomic<uint64_t> current = 0;
};

/// Bytes in memory that do not change; shared, never copied.
struct stream_content {
    std::shared_ptr<uint8_t const> bytes;
    uint64_t length = 0;
};

/// A stream in memory. Its content is replaced as a whole, so a picture can be held as it is.
class memory_stream : public stream_object {
  public:
    uint64_t size() const override;
    size_t read(uint64_t place, std::span<uint8_t> target) const override;
    void write(uint64_t place, std::span<uint8_t const> source) override;

    void store(stream_content content);

    /// Holds a picture by reference; the stream's bytes are then its pixels.
    void store(picture const& picture);

    /// The picture that the stream holds, if its content is one.
    std::optional<picture> held_picture() const;

    stream_content content() const;

  private:
    mutable std::mutex lock;
    stream_content bytes;
    std::optional<picture> image;
};

/// The stream behind a handle, which must be one in memory: E_ACCESSDENIED otherwise.
std::shared_ptr<memory_stream> memory_stream_of(
    winrt::Windows::Storage::Streams::IRandomAccessStream const& stream);

/// Holds a picture in a stream, from which a BitmapDecoder takes it. Any thread.
void store_picture(winrt::Windows::Storage::Streams::IRandomAccessStream const& stream,
                   picture const& picture);

}  // namespace runtime
