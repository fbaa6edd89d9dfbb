#include "page_crowd.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>
#include <system_error>
#include <thread>

#include <winrt/base.h>

#include "file_system.h"

namespace runtime {

namespace {

struct pipe_ends {
    file_descriptor reading;
    file_descriptor writing;
};

unsigned views = 0;

pipe_ends& calm_pipe() {
    static auto& ends = *new pipe_ends();
    return ends;
}

bool is_crowd() {
    return views >= std::thread::hardware_concurrency();
}

pipe_ends make_pipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        throw winrt::hresult_error(E_OUTOFMEMORY,
                                   winrt::to_hstring(std::string("No pipe for the processes of pages: ") +
                                                     std::generic_category().message(errno)));
    }
    return {file_descriptor(ends[0]), file_descriptor(ends[1])};
}

}  // namespace

page_crowd::page_crowd() {
    ++views;
    if (is_crowd()) {
        calm_pipe().writing = file_descriptor();
    }
}

page_crowd::~page_crowd() {
    --views;
}

int page_crowd::calm() {
    auto& ends = calm_pipe();
    bool const was_crowd = !ends.writing;
    if (!ends.reading || (was_crowd && !is_crowd())) {
        ends = make_pipe();
    }
    if (is_crowd()) {
        ends.writing = file_descriptor();
    }
    return ends.reading.get();
}

}  // namespace runtime
