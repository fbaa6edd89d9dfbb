#pragma once

#include <mutex>
#include <optional>

#include <winrt/Windows.Storage.Streams.h>

#include "picture.h"

namespace runtime {

/// Bytes in memory that do not change; shared, never copied.
struct stream_content {
    std::shared_ptr<uint8_t const> bytes;
    uint64_t length = 0;
};

/// The implementation of a random access stream. Its content is replaced as a whole, so whoever reads it
/// holds on to what was there. Any thread.
class memory_stream : public winrt::impl::object {
  public:
    void store(stream_content content);

    /// Holds a picture by reference; the stream's bytes are then its pixels.
    void store(picture const& picture);

    stream_content content() const;

    /// The picture that the stream holds, if its content is one.
    std::optional<picture> held_picture() const;

  private:
    mutable std::mutex lock;
    stream_content bytes;
    std::optional<picture> image;
};

/// Holds a picture in a stream, from which a BitmapDecoder takes it. Any thread.
void store_picture(winrt::Windows::Storage::Streams::IRandomAccessStream const& stream,
                   picture const& picture);

}  // namespace runtime
