#include <winrt/Windows.Storage.Streams.h>

#include <algorithm>

#include "buffer.h"
#include "implementation.h"
#include "stream.h"

namespace runtime {

namespace {

struct input_stream : winrt::impl::object {
    input_stream(std::shared_ptr<memory_stream> source, uint64_t position)
        : source(std::move(source)), position(position) {}

    std::shared_ptr<memory_stream> const source;
    uint64_t const position;
};

/// What has been loaded and not yet read is a window of the stream's content; nothing is copied before
/// somebody takes the bytes.
class data_reader : public winrt::impl::object {
  public:
    explicit data_reader(std::shared_ptr<input_stream> const& stream)
        : source(stream->source), begin(stream->position), end(stream->position) {}

    uint32_t load(uint32_t count) {
        content = source->content();
        begin = std::min(begin, content.length);
        end = std::min(end, content.length);
        auto const added = static_cast<uint32_t>(std::min<uint64_t>(count, content.length - end));
        end += added;
        return added;
    }

    void read(winrt::array_view<uint8_t> target) {
        if (target.size() > end - begin) {
            throw winrt::hresult_error(E_BOUNDS);
        }
        std::copy_n(content.bytes.get() + begin, target.size(), target.begin());
        begin += target.size();
    }

  private:
    std::shared_ptr<memory_stream> const source;
    stream_content content;
    uint64_t begin;
    uint64_t end;
};

}  // namespace

void memory_stream::store(stream_content content) {
    std::lock_guard guard(lock);
    bytes = std::move(content);
    image.reset();
}

void memory_stream::store(picture const& picture) {
    std::lock_guard guard(lock);
    bytes = {picture.pixels, picture.size()};
    image = picture;
}

stream_content memory_stream::content() const {
    std::lock_guard guard(lock);
    return bytes;
}

std::optional<picture> memory_stream::held_picture() const {
    std::lock_guard guard(lock);
    return image;
}

void store_picture(winrt::Windows::Storage::Streams::IRandomAccessStream const& stream,
                   picture const& picture) {
    implementation_of<memory_stream>(stream)->store(picture);
}

}  // namespace runtime

namespace winrt::Windows::Storage::Streams {

using runtime::implementation_of;

uint32_t IBuffer::Length() const {
    return implementation_of<runtime::buffer_object>(*this)->length;
}

uint8_t* IBuffer::data() const {
    return implementation_of<runtime::buffer_object>(*this)->bytes.get();
}

uint64_t IRandomAccessStream::Size() const {
    return implementation_of<runtime::memory_stream>(*this)->content().length;
}

IInputStream IRandomAccessStream::GetInputStreamAt(uint64_t position) const {
    return IInputStream(
        std::make_shared<runtime::input_stream>(implementation_of<runtime::memory_stream>(*this), position));
}

InMemoryRandomAccessStream::InMemoryRandomAccessStream()
    : IRandomAccessStream(std::make_shared<runtime::memory_stream>()) {}

DataReader::DataReader(IInputStream const& inputStream)
    : IInspectable(
          std::make_shared<runtime::data_reader>(implementation_of<runtime::input_stream>(inputStream))) {}

DataReaderLoadOperation DataReader::LoadAsync(uint32_t count) const {
    auto operation = std::make_shared<impl::async_object<uint32_t>>();
    operation->complete(implementation_of<runtime::data_reader>(*this)->load(count));
    return DataReaderLoadOperation(std::move(operation));
}

void DataReader::ReadBytes(array_view<uint8_t> value) const {
    implementation_of<runtime::data_reader>(*this)->read(value);
}

}  // namespace winrt::Windows::Storage::Streams
