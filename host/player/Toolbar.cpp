#include "Toolbar.h"

#include <nlohmann/json.hpp>

#include "Address.h"
#include "BundledPages.h"

namespace zarvik::player {

namespace {

using nlohmann::json;

std::string textIn(const json& object, const char* name) {
    const auto found = object.find(name);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

}  // namespace

Toolbar::Toolbar(host::Engine& engine, host::Size size)
    : engine(engine), webView(engine, size, false, target), currentSize(size) {
    webView.loadHtml(toolbarHtml);
}

void Toolbar::resize(host::Size size) {
    if (size.width != currentSize.width || size.height != currentSize.height) {
        currentSize = size;
        engine.plugin().WebView_resize(webView.handle(), size.width, size.height);
    }
}

std::optional<Action> Toolbar::actionFor(const std::string& text) {
    const auto message = json::parse(text, nullptr, false);
    if (!message.is_object()) {
        return std::nullopt;
    }
    const auto type = textIn(message, "type");
    if (type == "toolbar.ready") {
        ready = true;
    } else if (type == "toolbar.load") {
        return steps::Load{typedToUrl(textIn(message, "address"))};
    } else if (type == "toolbar.back") {
        return steps::Back{};
    } else if (type == "toolbar.forward") {
        return steps::Forward{};
    } else if (type == "toolbar.reload") {
        return steps::Reload{};
    } else if (type == "toolbar.stop") {
        return steps::Stop{};
    } else if (type == "toolbar.view" && message.contains("number") &&
               message["number"].is_number_integer()) {
        return steps::SelectView{message["number"].get<int>()};
    }
    return std::nullopt;
}

void Toolbar::show(const PageState& state, std::size_t number, std::size_t count) {
    if (!ready) {
        return;
    }
    const json page{{"url", state.url},
                    {"title", state.title},
                    {"loading", state.loading},
                    {"progress", state.progress},
                    {"failure", state.failure},
                    {"canGoBack", state.canGoBack},
                    {"canGoForward", state.canGoForward},
                    {"number", number},
                    {"count", count}};
    // Only ASCII and no broken characters: the text is a script.
    auto next = page.dump(-1, ' ', true, json::error_handler_t::replace);
    if (next != shown) {
        run("toolbar.show(" + next + ")");
        shown = std::move(next);
    }
}

void Toolbar::editAddress() {
    run("toolbar.editAddress()");
}

void Toolbar::leaveAddress() {
    run("toolbar.leaveAddress()");
}

void Toolbar::run(const std::string& script) const {
    engine.plugin().WebView_executeJavaScript(webView.handle(), script.c_str(), "");
}

}  // namespace zarvik::player
