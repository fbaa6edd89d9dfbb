#include <algorithm>
#include <array>
#include <set>

#include "Case.h"
#include "Frames.h"
#include "Latency.h"
#include "Memory.h"
#include "Pdf.h"
#include "Scripts.h"

namespace zarvik::bench {

namespace {

constexpr Size hd{.width = 1280, .height = 720};
constexpr std::array sizes{hd, Size{.width = 1920, .height = 1080}, Size{.width = 3840, .height = 2160}};
constexpr std::array viewCounts{1, 2, 4, 8};

/// Measured by a short run too.
const std::set<std::string> quick{"start",   "still",           "elements", "canvas",
                                  "scripts", "script-to-pixel", "input"};

/// "canvas", "canvas-4K", "canvas-4x1080p".
std::string nameFor(const std::string& base, Size size, int views = 1) {
    if (views > 1) {
        return base + "-" + std::to_string(views) + "x" + nameOf(size);
    }
    return size.height == hd.height ? base : base + "-" + nameOf(size);
}

std::vector<Case> makeCases() {
    std::vector<Case> all{startCase(), recoveryCase(), stillCase(1, hd, "still"),
                          stillCase(viewCounts.back(), hd, nameFor("still", hd, viewCounts.back())),
                          elementsCase(1, hd, "elements")};
    for (const Size size : sizes) {
        for (const int views : viewCounts) {
            all.push_back(canvasCase(views, size, nameFor("canvas", size, views)));
        }
    }
    std::ranges::move(std::array{pipelinedScriptsCase(), awaitedScriptsCase(),
                                 awaitedScriptsOnOneProcessorCase(), messagesCase()},
                      std::back_inserter(all));
    for (const Size size : sizes) {
        all.push_back(scriptToPixelCase(size, nameFor("script-to-pixel", size)));
    }
    for (const Size size : sizes) {
        all.push_back(inputCase(size, nameFor("input", size)));
    }
    all.push_back(fastInputCase());
    for (const Size size : sizes) {
        all.push_back(memoryCase(size, nameFor("memory", size)));
    }
    all.push_back(pdfCase());
    for (auto& each : all) {
        each.quick = quick.contains(each.name);
    }
    return all;
}

}  // namespace

std::string nameOf(Size size) {
    return size.width >= 3840 ? std::to_string(size.width / 960) + "K" : std::to_string(size.height) + "p";
}

const std::vector<Case>& cases() {
    static const std::vector<Case> all = makeCases();
    return all;
}

}  // namespace zarvik::bench
