#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::Windows::Storage::Streams {

/// A run of bytes in memory.
struct IBuffer : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(IBuffer, IInspectable)

    uint32_t Length() const;

    /// The bytes themselves. What a picture's buffer holds is shared and must not be written to.
    uint8_t* data() const;
};

/// Bytes that are read in order.
struct IInputStream : Foundation::IInspectable {
    WINRT_LINUX_HANDLE(IInputStream, IInspectable)
};

/// Bytes that are read, and where they are in memory written, at any place. Any thread.
struct IRandomAccessStream : IInputStream {
    WINRT_LINUX_HANDLE(IRandomAccessStream, IInputStream)

    uint64_t Size() const;

    /// Sets the place that reading and writing start from.
    void Seek(uint64_t position) const;

    /// A stream of its own over the same content.
    IInputStream GetInputStreamAt(uint64_t position) const;

    /// Writes the buffer's bytes and moves behind them; yields their number. E_ACCESSDENIED for a stream that
    /// was opened for reading.
    Foundation::IAsyncOperationWithProgress<uint32_t, uint32_t> WriteAsync(IBuffer const& buffer) const;
};

/// A stream in memory. A picture that is captured into it is held as it is: it takes no encoding to store it
/// and no decoding to get it back with a BitmapDecoder.
struct InMemoryRandomAccessStream : IRandomAccessStream {
    InMemoryRandomAccessStream();
    WINRT_LINUX_HANDLE(InMemoryRandomAccessStream, IRandomAccessStream)
};

/// The loading of bytes into a reader; its result is their number.
struct DataReaderLoadOperation : Foundation::IAsyncOperation<uint32_t> {
    WINRT_LINUX_HANDLE(DataReaderLoadOperation, IAsyncOperation<uint32_t>)
};

/// Reads from a stream: bytes are loaded first and then taken. One thread at a time.
struct DataReader : Foundation::IInspectable {
    explicit DataReader(IInputStream const& inputStream);
    WINRT_LINUX_HANDLE(DataReader, IInspectable)

    /// Loads the next bytes, fewer when the stream ends before.
    DataReaderLoadOperation LoadAsync(uint32_t count) const;

    /// Takes as many of the loaded bytes as the array holds; E_BOUNDS when there are fewer.
    void ReadBytes(array_view<uint8_t> value) const;
};

}  // namespace winrt::Windows::Storage::Streams
