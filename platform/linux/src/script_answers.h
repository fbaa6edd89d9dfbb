#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace runtime {

/// The answers to the calls of a document's functions. The page's process writes them into a file in memory,
/// each as soon as its call has ended. So they can be read here many at a time, and also while the next call
/// keeps that process busy for ever. User-interface thread only.
///
/// A process that was taken over writes what it likes. Answers come in the order of their calls and within
/// bounds; after anything else nothing is read any more.
class script_answers {
  public:
    struct answer {
        uint64_t number;  // of the call
        std::string text;
    };

    /// Throws when there is no memory for a file.
    script_answers();
    ~script_answers();
    script_answers(script_answers const&) = delete;
    script_answers& operator=(script_answers const&) = delete;

    /// The next answer, if it is there already and belongs to a call up to this one.
    std::optional<answer> next(uint64_t last);

    /// The number of the latest answer that is there, belongs to a call up to this one and was not taken yet;
    /// otherwise 0.
    uint64_t latest(uint64_t last);

    /// The file, for the page's process.
    int file() const { return descriptor; }

    /// At most about so many bytes are held that were not taken yet. No answer is longer.
    static constexpr size_t most_bytes = size_t{1} << 28;

  private:
    struct record;

    static std::optional<record> first_record(std::string_view bytes);
    void read();
    void give_up();

    int descriptor;
    uint64_t end = 0;       // of what was read
    uint64_t released = 0;  // end of what gave its memory back
    std::string bytes;      // read
    size_t taken = 0;       // of `bytes`
    uint64_t previous = 0;  // number of the answer that was taken last
    bool is_readable = true;
};

}  // namespace runtime
