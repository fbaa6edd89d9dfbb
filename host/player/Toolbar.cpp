#include "Toolbar.h"

#include "Address.h"
#include "BundledPages.h"
#include "Json.h"

namespace zarvik::player {

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
    const auto message = nlohmann::json::parse(text, nullptr, false);
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
    const nlohmann::json page{{"url", state.url},
                              {"title", state.title},
                              {"loading", state.loading},
                              {"progress", state.progress},
                              {"failure", state.failure},
                              {"canGoBack", state.canGoBack},
                              {"canGoForward", state.canGoForward},
                              {"number", number},
                              {"count", count}};
    auto next = toScript(page);
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
    if (!ready) {
        return;
    }
    engine.plugin().WebView_executeJavaScript(webView.handle(), script.c_str(), "");
}

}  // namespace zarvik::player
