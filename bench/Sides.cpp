#include <stdexcept>

#include "Side.h"

namespace zarvik::bench {

std::unique_ptr<Subject> makeSubject(Side side, const Setup& setup) {
    switch (side) {
        case Side::library:
            return makeLibrarySubject(setup);
        case Side::bare:
            return makeBareSubject(setup);
        case Side::chromium:
            return makeChromiumSubject(setup);
        case Side::qt:
            break;
    }
    throw std::runtime_error("The side qt is measured by zarvik-bench-qt.");
}

}  // namespace zarvik::bench
