#include "Memory.h"

#include "Pages.h"

namespace zarvik::bench {

namespace {

constexpr int furtherViews = 4;

/// What the library may take for a view: two pictures, and this besides.
constexpr double megabytesBesidePictures = 5;

Figures measureMemory(Subject& subject, const Settings&) {
    // A page that moves, since one at rest would leave memory untouched that others need.
    subject.show(elementsPage());
    const auto one = MemoryUse::now(subject.drawsOnDisplay());
    subject.open(1 + furtherViews);
    subject.show(elementsPage());
    const auto all = MemoryUse::now(subject.drawsOnDisplay());
    if (!one || !all) {
        throw NotServed("Its memory cannot be seen.");
    }
    return {{"own", (all->own - one->own) / furtherViews}, {"tree", (all->tree - one->tree) / furtherViews}};
}

}  // namespace

Case memoryCase(Size size, const std::string& name) {
    const double allowed = 2 * 4e-6 * size.width * size.height + megabytesBesidePictures;
    return {.name = name,
            .title = "memory of each further view, " + nameOf(size),
            .lines = {{"own",
                       "of the side's own process, MB",
                       "%.1f",
                       {"bare + " + std::to_string(static_cast<int>(allowed)),
                        [allowed](double library, double bare) { return library <= bare + allowed; }}},
                      {"tree", "of all processes, MB", "%.0f"}},
            .measure = measureMemory,
            .size = size};
}

}  // namespace zarvik::bench
