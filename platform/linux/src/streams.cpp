#include <winrt/Windows.Storage.Streams.h>

#include <algorithm>
#include <vector>

#include "buffer.h"
#include "implementation.h"
#include "stream.h"

namespace runtime {

namespace {

/// A place of its own in the content of another stream.
class stream_view : public stream_object {
  public:
    stream_view(std::shared_ptr<stream_object> source, uint64_t place) : source(std::move(source)) {
        seek(place);
    }

    uint64_t size() const override { return source->size(); }
    size_t read(uint64_t place, std::span<uint8_t> target) const override {
        return source->read(place, target);
    }

  private:
    std::shared_ptr<stream_object> const source;
};

class data_reader : public winrt::impl::object {
  public:
    explicit data_reader(std::shared_ptr<stream_object> stream) : source(std::move(stream)) {}

    uint32_t load(uint32_t count) {
        loaded.erase(loaded.begin(), loaded.begin() + static_cast<std::ptrdiff_t>(taken));
        taken = 0;
        auto const place = source->position();
        auto const length = source->size();
        auto const kept = loaded.size();
        loaded.resize(kept + std::min<uint64_t>(count, length - std::min(place, length)));
        auto const added = source->read(place, std::span(loaded).subspan(kept));
        loaded.resize(kept + added);
        source->seek(place + added);
        return static_cast<uint32_t>(added);
    }

    void read(winrt::array_view<uint8_t> target) {
        if (target.size() > loaded.size() - taken) {
            throw winrt::hresult_error(E_BOUNDS);
        }
        std::copy_n(loaded.begin() + static_cast<std::ptrdiff_t>(taken), target.size(), target.begin());
        taken += target.size();
    }

  private:
    std::shared_ptr<stream_object> const source;
    std::vector<uint8_t> loaded;
    size_t taken = 0;
};

stream_content allocate(uint64_t length, uint8_t*& bytes) {
    std::shared_ptr<uint8_t[]> const memory(new uint8_t[length]());
    bytes = memory.get();
    return {std::shared_ptr<uint8_t const>(memory, bytes), length};
}

}  // namespace

void stream_object::write(uint64_t, std::span<uint8_t const>) {
    throw winrt::hresult_error(E_ACCESSDENIED, L"The stream can only be read.");
}

uint64_t memory_stream::size() const {
    return content().length;
}

size_t memory_stream::read(uint64_t place, std::span<uint8_t> target) const {
    auto const held = content();
    auto const begin = std::min(place, held.length);
    auto const count = std::min<uint64_t>(target.size(), held.length - begin);
    std::copy_n(held.bytes.get() + begin, count, target.begin());
    return count;
}

void memory_stream::write(uint64_t place, std::span<uint8_t const> source) {
    std::lock_guard guard(lock);
    auto const longest = std::vector<uint8_t>().max_size();
    if (place > longest - source.size()) {
        throw winrt::hresult_error(E_OUTOFMEMORY);
    }
    uint8_t* target = nullptr;
    // Whoever reads holds on to what was there.
    auto changed = allocate(std::max(bytes.length, place + source.size()), target);
    std::copy_n(bytes.bytes.get(), bytes.length, target);
    std::ranges::copy(source, target + place);
    bytes = std::move(changed);
    image.reset();
}

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

std::shared_ptr<memory_stream> memory_stream_of(
    winrt::Windows::Storage::Streams::IRandomAccessStream const& stream) {
    auto memory = std::dynamic_pointer_cast<memory_stream>(implementation_of<stream_object>(stream));
    if (!memory) {
        throw winrt::hresult_error(E_ACCESSDENIED, L"The stream is not one in memory.");
    }
    return memory;
}

void store_picture(winrt::Windows::Storage::Streams::IRandomAccessStream const& stream,
                   picture const& picture) {
    memory_stream_of(stream)->store(picture);
}

}  // namespace runtime

namespace winrt::Windows::Storage::Streams {

using runtime::implementation_of;
using runtime::stream_object;

uint32_t IBuffer::Length() const {
    return implementation_of<runtime::buffer_object>(*this)->length;
}

uint8_t* IBuffer::data() const {
    return implementation_of<runtime::buffer_object>(*this)->bytes.get();
}

uint64_t IRandomAccessStream::Size() const {
    return implementation_of<stream_object>(*this)->size();
}

void IRandomAccessStream::Seek(uint64_t position) const {
    implementation_of<stream_object>(*this)->seek(position);
}

IInputStream IRandomAccessStream::GetInputStreamAt(uint64_t position) const {
    return IInputStream(
        std::make_shared<runtime::stream_view>(implementation_of<stream_object>(*this), position));
}

Foundation::IAsyncOperationWithProgress<uint32_t, uint32_t> IRandomAccessStream::WriteAsync(
    IBuffer const& buffer) const {
    auto const stream = implementation_of<stream_object>(*this);
    auto const source = implementation_of<runtime::buffer_object>(buffer);
    auto const place = stream->position();
    auto operation = std::make_shared<impl::async_object<uint32_t>>();
    try {
        stream->write(place, {source->bytes.get(), source->length});
        stream->seek(place + source->length);
        operation->complete(source->length);
    } catch (...) {
        operation->fail(std::current_exception());
    }
    return Foundation::IAsyncOperationWithProgress<uint32_t, uint32_t>(std::move(operation));
}

InMemoryRandomAccessStream::InMemoryRandomAccessStream()
    : IRandomAccessStream(std::make_shared<runtime::memory_stream>()) {}

DataReader::DataReader(IInputStream const& inputStream)
    : IInspectable(std::make_shared<runtime::data_reader>(implementation_of<stream_object>(inputStream))) {}

DataReaderLoadOperation DataReader::LoadAsync(uint32_t count) const {
    auto operation = std::make_shared<impl::async_object<uint32_t>>();
    operation->complete(implementation_of<runtime::data_reader>(*this)->load(count));
    return DataReaderLoadOperation(std::move(operation));
}

void DataReader::ReadBytes(array_view<uint8_t> value) const {
    implementation_of<runtime::data_reader>(*this)->read(value);
}

}  // namespace winrt::Windows::Storage::Streams
