#include "InputRouter.h"

#include <cmath>
#include <utility>

namespace zarvik::player {

namespace {

std::int32_t toPixels(double value) {
    return static_cast<std::int32_t>(std::lround(value));
}

/// How many bytes the character that begins with this one has in UTF-8.
std::size_t lengthOf(char first) {
    const auto byte = static_cast<unsigned char>(first);
    return byte < 0xC0 ? 1 : byte < 0xE0 ? 2 : byte < 0xF0 ? 3 : 4;
}

}  // namespace

InputRouter::Receiver InputRouter::move(Point windowPoint) {
    auto target = scenery.under(windowPoint);
    for (auto& held : pressed) {
        if (held && !(target && target->page == held->page)) {
            return Receiver::nobody;
        }
    }
    for (auto& held : pressed) {
        held = held ? target : held;
    }
    auto left = Receiver::nobody;
    if (hovered && !(target && target->page == hovered->page)) {
        left = leave();
    }
    if (!target) {
        return left;
    }
    plugin.WebView_movePointer(target->page.view->handle(), target->x, target->y, 0);
    hovered = target;
    return left == Receiver::page ? left : receiverOf(*target);
}

InputRouter::Receiver InputRouter::leave() {
    if (!hovered) {
        return Receiver::nobody;
    }
    plugin.WebView_movePointer(hovered->page.view->handle(), 0, 0, 1);
    const auto receiver = receiverOf(*hovered);
    hovered.reset();
    return receiver;
}

InputRouter::Receiver InputRouter::press(Point windowPoint, Button button, int clickCount) {
    const auto target = scenery.under(windowPoint);
    if (!target) {
        return Receiver::nobody;
    }
    setFocus(target->surface ? Focus::page : Focus::toolbar, target->surface.value_or(current));
    plugin.WebView_pointerDown(target->page.view->handle(), target->x, target->y,
                               static_cast<std::int32_t>(button), clickCount);
    held(button) = target;
    return receiverOf(*target);
}

std::optional<Scenery::Target>& InputRouter::held(Button button) {
    return pressed.at(static_cast<std::size_t>(button));
}

InputRouter::Receiver InputRouter::release(Point windowPoint, Button button, int clickCount) {
    const auto begin = std::exchange(held(button), std::nullopt);
    if (!begin) {
        return Receiver::nobody;
    }
    // Outside of the page, the button is released where the pointer left it.
    const auto under = scenery.under(windowPoint);
    const auto target = under && under->page == begin->page ? *under : *begin;
    noteInput(target.page);
    plugin.WebView_pointerUp(target.page.view->handle(), target.x, target.y,
                             static_cast<std::int32_t>(button), clickCount);
    return receiverOf(target);
}

InputRouter::Receiver InputRouter::scroll(Point windowPoint, Point delta) {
    const auto target = scenery.under(windowPoint);
    if (!target) {
        return Receiver::nobody;
    }
    noteInput(target->page);
    plugin.WebView_scrollAtPoint(target->page.view->handle(), toPixels(delta.x), toPixels(delta.y), target->x,
                                 target->y);
    return receiverOf(*target);
}

InputRouter::Receiver InputRouter::scrollPage(Point delta) {
    if (current >= scenery.pages.size()) {
        return Receiver::nobody;
    }
    const auto& page = scenery.pages[current];
    noteInput(page);
    plugin.WebView_scroll(page.view->handle(), toPixels(delta.x), toPixels(delta.y));
    return Receiver::page;
}

InputRouter::Receiver InputRouter::type(const std::string& text) {
    auto receiver = Receiver::nobody;
    for (std::size_t i = 0; i < text.size();) {
        const auto length = lengthOf(text[i]);
        receiver = key(text.substr(i, length));
        i += length;
    }
    return receiver;
}

InputRouter::Receiver InputRouter::key(const std::string& name) {
    const auto* page = focusedPage();
    if (!page) {
        return Receiver::nobody;
    }
    noteInput(*page);
    plugin.WebView_sendKey(page->view->handle(), name.c_str());
    return focus == Focus::toolbar ? Receiver::toolbar : Receiver::page;
}

void InputRouter::focusPage(std::size_t surface) {
    setFocus(Focus::page, surface);
}

void InputRouter::focusToolbar() {
    setFocus(Focus::toolbar, current);
}

void InputRouter::setFocus(Focus next, std::size_t surface) {
    if (next == focus && surface == current) {
        return;
    }
    tellFocus(false);
    focus = next;
    current = surface;
    tellFocus(true);
}

void InputRouter::tellFocus(bool focused) const {
    const auto* page = focusedPage();
    // Before its first picture a view has no page that could take the focus.
    if (page && page->view->uploads() > 0) {
        plugin.WebView_setFocused(page->view->handle(), focused ? 1 : 0);
    }
}

const Scenery::Page* InputRouter::focusedPage() const {
    if (focus == Focus::toolbar) {
        return &scenery.toolbar;
    }
    return focus == Focus::page && current < scenery.pages.size() ? &scenery.pages[current] : nullptr;
}

InputRouter::Receiver InputRouter::receiverOf(const Scenery::Target& target) const {
    return target.surface ? Receiver::page : Receiver::toolbar;
}

void InputRouter::noteInput(const Scenery::Page& page) {
    statistics.inputSent(page.view->target(), page.view->uploads());
}

}  // namespace zarvik::player
