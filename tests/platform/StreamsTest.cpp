#include <gtest/gtest.h>
#include <winrt/Windows.Storage.Streams.h>

#include <algorithm>

#include "stream.h"

using namespace winrt::Windows::Storage::Streams;

namespace {

runtime::stream_content bytes(const std::string& text) {
    const std::shared_ptr<uint8_t> memory(new uint8_t[text.size()], std::default_delete<uint8_t[]>());
    std::ranges::copy(text, memory.get());
    return {memory, text.size()};
}

InMemoryRandomAccessStream streamOf(const std::string& text) {
    InMemoryRandomAccessStream stream;
    static_cast<runtime::memory_stream&>(*stream.get_implementation()).store(bytes(text));
    return stream;
}

uint32_t load(const DataReader& reader, uint32_t count) {
    return reader.LoadAsync(count).operator co_await().await_resume();
}

std::string take(const DataReader& reader, uint32_t count) {
    std::vector<uint8_t> taken(count);
    reader.ReadBytes(taken);
    return {taken.begin(), taken.end()};
}

}  // namespace

TEST(StreamsTest, ReaderTakesOnlyWhatItLoaded) {
    const auto stream = streamOf("0123456789");
    EXPECT_EQ(stream.Size(), 10u);
    const DataReader reader(stream.GetInputStreamAt(2));
    EXPECT_THROW(take(reader, 1), winrt::hresult_error);
    EXPECT_EQ(load(reader, 3), 3u);
    EXPECT_EQ(take(reader, 2), "23");
    EXPECT_THROW(take(reader, 2), winrt::hresult_error);
    EXPECT_EQ(load(reader, 100), 5u);
    EXPECT_EQ(take(reader, 6), "456789");
    EXPECT_EQ(load(reader, 1), 0u);
    EXPECT_EQ(take(reader, 0), "");
}

TEST(StreamsTest, ReaderSeesWhatIsWrittenBeforeItLoads) {
    const InMemoryRandomAccessStream stream;
    const DataReader reader(stream.GetInputStreamAt(0));
    const DataReader beyond(stream.GetInputStreamAt(100));
    EXPECT_EQ(stream.Size(), 0u);
    auto& memory = static_cast<runtime::memory_stream&>(*stream.get_implementation());
    memory.store(bytes("abcdef"));
    EXPECT_EQ(load(beyond, 1), 0u);
    EXPECT_EQ(load(reader, 6), 6u);
    memory.store(bytes("xy"));  // what has been loaded stays readable
    EXPECT_EQ(take(reader, 6), "abcdef");
}

TEST(StreamsTest, NullHandlesAreRefused) {
    EXPECT_THROW(DataReader(IInputStream(nullptr)), winrt::hresult_error);
    EXPECT_THROW(InMemoryRandomAccessStream(nullptr).Size(), winrt::hresult_error);
    EXPECT_THROW(IBuffer(nullptr).data(), winrt::hresult_error);
}
