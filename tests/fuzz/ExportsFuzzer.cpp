// The exports as an engine calls them, with a real browser engine: an input is a sequence of calls, on
// several threads and from callbacks, for up to eight views at once, whatever their arguments. With
// ZARVIK_PRINT_SEQUENCE=1 sequences are printed as C and not played.

#include <cstdlib>
#include <iostream>

#include "fuzz/exports/Sequence.h"
#include "fuzz/exports/Session.h"

namespace {

/// Lives as long as the library's threads, except for its own thread.
Session& session() {
    static Session& session = []() -> Session& {
        static auto& made = *new Session;
        std::atexit([] { made.stop(); });
        return made;
    }();
    return session;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool printed = std::getenv("ZARVIK_PRINT_SEQUENCE") != nullptr;
    const auto steps = decode({data, size});
    if (!printed) {
        session().play(steps);
        return 0;
    }
    for (const Step& step : steps) {
        std::cout << step.text() << "\n";
    }
    return 0;
}
