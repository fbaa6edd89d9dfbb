#include "RecordPrinter.h"

#include <string>

namespace zarvik::player {

namespace {

using host::Record;

/// One short line of printable text.
std::string shortened(const std::string& text) {
    constexpr std::size_t longest = 160;
    std::string result;
    for (const char character : text) {
        result += static_cast<unsigned char>(character) < ' ' ? ' ' : character;
    }
    if (result.size() > longest) {
        std::size_t end = longest;
        while ((static_cast<unsigned char>(result[end]) & 0xC0) == 0x80) {
            --end;  // not inside a character
        }
        result.resize(end);
        result += "...";
    }
    return result;
}

const char* threadOf(const Record& record) {
    switch (record.role) {
        case Record::ThreadRole::scripting:
            return "scripting";
        case Record::ThreadRole::render:
            return "render";
        case Record::ThreadRole::library:
            break;
    }
    return record.threadName.c_str();
}

}  // namespace

void RecordPrinter::print(const Record& record) const {
    const double time = std::chrono::duration<double, std::milli>(record.time - start).count();
    switch (record.kind) {
        case Record::Kind::message: {
            const std::string payload = shortened(record.payload);
            std::printf("%9.1f ms  %-15s  %s  %s%s%s\n", time, threadOf(record), record.target.c_str(),
                        record.method.c_str(), payload.empty() ? "" : "  ", payload.c_str());
            break;
        }
        case Record::Kind::data:
            std::printf("%9.1f ms  %-15s  %s  data %s  %zu bytes\n", time, threadOf(record),
                        record.target.c_str(), record.method.c_str(), record.bytes.size());
            break;
        case Record::Kind::info:
            if (verbose) {
                std::fprintf(stderr, "info: %s\n", record.payload.c_str());
            }
            break;
        case Record::Kind::warning:
            std::fprintf(stderr, "warning: %s\n", record.payload.c_str());
            break;
        case Record::Kind::error:
            std::fprintf(stderr, "error: %s\n", record.payload.c_str());
            break;
    }
    std::fflush(stdout);
}

}  // namespace zarvik::player
