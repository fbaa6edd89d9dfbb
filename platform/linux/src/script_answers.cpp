#include "script_answers.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <winrt/base.h>

#include "../page_process/answer.h"

namespace runtime {

struct script_answers::record {
    uint64_t number;
    std::string_view text;

    size_t size() const { return sizeof(answer_head) + text.size(); }
};

script_answers::script_answers() : descriptor(memfd_create("script answers", MFD_CLOEXEC)) {
    if (descriptor < 0) {
        throw winrt::hresult_error(E_OUTOFMEMORY,
                                   winrt::to_hstring(std::string("No file for the answers of scripts: ") +
                                                     std::generic_category().message(errno)));
    }
}

script_answers::~script_answers() {
    close(descriptor);
}

std::optional<script_answers::answer> script_answers::next(uint64_t last) {
    auto found = first_record(std::string_view(bytes).substr(taken));
    if (!found) {
        read();
        found = first_record(bytes);
    }
    bool const is_too_long = !found && bytes.size() >= most_bytes;
    if (is_too_long || (found && found->number <= previous)) {
        give_up();
        return std::nullopt;
    }
    if (!found || found->number > last) {
        return std::nullopt;
    }
    previous = found->number;
    taken += found->size();
    return answer{found->number, std::string(found->text)};
}

uint64_t script_answers::latest(uint64_t last) {
    read();
    auto number = previous;
    auto rest = std::string_view(bytes);
    while (auto const found = first_record(rest)) {
        if (found->number <= number || found->number > last) {
            break;
        }
        number = found->number;
        rest.remove_prefix(found->size());
    }
    return number == previous ? 0 : number;
}

/// Nothing when only a part of it was written yet.
std::optional<script_answers::record> script_answers::first_record(std::string_view bytes) {
    answer_head head{};
    if (bytes.size() < sizeof head) {
        return std::nullopt;
    }
    std::memcpy(&head, bytes.data(), sizeof head);
    bytes.remove_prefix(sizeof head);
    if (bytes.size() < head.size) {
        return std::nullopt;
    }
    return record{head.number, bytes.substr(0, head.size)};
}

void script_answers::read() {
    bytes.erase(0, std::exchange(taken, 0));
    std::array<char, 1 << 16> piece{};
    while (is_readable && bytes.size() < most_bytes) {
        auto const count = pread(descriptor, piece.data(), piece.size(), static_cast<off_t>(end));
        auto const added = count > 0 ? static_cast<size_t>(count) : 0;
        bytes.append(piece.data(), added);
        end += added;
        if (added < piece.size()) {
            break;
        }
    }

    constexpr uint64_t much = 1 << 20;
    if (end - released >= much) {
        fallocate(descriptor, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, 0, static_cast<off_t>(end));
        released = end;
    }
}

void script_answers::give_up() {
    is_readable = false;
    bytes = {};
    taken = 0;
}

}  // namespace runtime
