#include <ctime>
#include <stdexcept>
#include <thread>

#include "Sides.h"
#include "zarvik/host/Engine.h"
#include "zarvik/host/View.h"

namespace zarvik::bench {

namespace {

std::chrono::nanoseconds currentThreadTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Reading read(host::Engine& engine, const host::View& view) {
    return Reading::now(view.uploads(), engine.renderThread().run(currentThreadTime));
}

}  // namespace

Measurement measureLibrary(const PageText& page, const Settings& settings) {
    host::Engine engine({.turnsPerSecond = settings.rate});
    host::View view(engine, {.width = pageWidth, .height = pageHeight});
    view.loadHtml(page.html);
    if (const auto load = view.waitForLoad(); !load) {
        throw std::runtime_error("The page did not load. " + load.reason);
    }
    if (!view.waitForUploads(1)) {
        throw std::runtime_error("No picture came into the texture.");
    }
    std::this_thread::sleep_for(warmUp);

    const Reading begin = read(engine, view);
    std::this_thread::sleep_for(std::chrono::duration<double>(settings.seconds));
    const Reading end = read(engine, view);
    expectCorner(view.readPixels().at(0, 0));
    return Measurement::between(begin, end);
}

}  // namespace zarvik::bench
