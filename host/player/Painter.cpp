#include "Painter.h"

#include <stdexcept>
#include <utility>

namespace zarvik::player {

namespace {

Renderer::Texture textureOf(const host::View* view) {
    return {.glTexture = view->glTexture(), .uploads = view->uploads()};
}

}  // namespace

Painter::Painter(host::Engine& engine, Statistics& statistics, Frames frames)
    : engine(engine), statistics(statistics), frames(frames) {
    engine.renderThread().run([this] { renderer = std::make_unique<Renderer>(); });
    if (frames != Frames::none) {
        engine.setDrawing([this] { return draw(); });
    }
}

Painter::~Painter() {
    engine.setDrawing(nullptr);
    engine.renderThread().run([this] { renderer.reset(); });
}

void Painter::show(Scenery next) {
    const std::scoped_lock lock(mutex);
    scenery = std::move(next);
}

std::optional<Renderer::Frame> Painter::currentFrame() {
    std::unique_lock lock(mutex);
    const auto current = scenery;
    lock.unlock();
    if (!current) {
        return std::nullopt;
    }
    Renderer::Frame frame{.stage = current->stage,
                          .camera = current->camera,
                          .window = current->window,
                          .pages = {},
                          .toolbar = textureOf(current->toolbar.view),
                          .toolbarHeight = Scenery::toolbarHeight};
    for (const auto& page : current->pages) {
        frame.pages.push_back(textureOf(page.view));
    }
    return frame;
}

bool Painter::draw() {
    auto frame = currentFrame();
    if (!frame || (!stale.exchange(false) && frame == drawn)) {
        return false;
    }
    try {
        if (frames == Frames::window) {
            renderer->drawToWindow(*frame);
        } else {
            renderer->drawOffscreen(*frame);
        }
    } catch (const std::runtime_error&) {
        const std::scoped_lock lock(mutex);
        failure = std::current_exception();
        return false;
    }
    std::map<std::string, std::uint64_t> pictures;
    std::unique_lock lock(mutex);
    for (std::size_t i = 0; i < frame->pages.size(); ++i) {
        pictures[scenery->pages[i].view->target()] = frame->pages[i].uploads;
    }
    pictures[scenery->toolbar.view->target()] = frame->toolbar.uploads;
    lock.unlock();
    statistics.frameDrawn(pictures);
    drawn = std::move(frame);
    return true;
}

void Painter::throwFailure() {
    const std::scoped_lock lock(mutex);
    if (const auto thrown = std::exchange(failure, nullptr)) {
        std::rethrow_exception(thrown);
    }
}

host::Image Painter::picture() {
    return engine.renderThread().run([this] {
        const auto frame = currentFrame();
        if (!frame) {
            throw std::logic_error("There is nothing to draw yet.");
        }
        return renderer->drawToImage(*frame);
    });
}

}  // namespace zarvik::player
