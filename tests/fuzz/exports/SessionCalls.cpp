// What the engine of a session says to the library, and what the library returns.

#include <algorithm>
#include <cstdlib>
#include <nlohmann/json.hpp>

#include "fuzz/exports/Session.h"
#include "fuzz/support/Require.h"

bool Session::isUtf8(std::string_view text) {
    try {
        return !nlohmann::json(text).dump().empty();
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
}

std::vector<Argument> Session::prepared(const Step& step) {
    const std::scoped_lock lock(mutex);
    std::vector<Argument> arguments = step.arguments;
    const std::string& name = step.function->name;
    for (Argument& argument : arguments) {
        if (argument.kind == Argument::Kind::view) {
            argument.pointer = views[static_cast<std::size_t>(argument.number)].handle;
        }
    }
    const int view = arguments.empty() ? -1 : liveView(arguments.front().pointer);
    for (Argument& argument : arguments) {
        if (argument.kind == Argument::Kind::targetName) {
            argument.text = "view" + std::to_string(sequence) + "." + std::to_string(argument.number);
        } else if (argument.kind == Argument::Kind::callbackId) {
            argument.text = std::to_string(sequence) + "." + std::to_string(argument.number);
            questions[argument.text] = {
                .view = view, .lane = ownLane, .mustBeAnswered = name == "WebView_executeJavaScript"};
        } else if (argument.kind == Argument::Kind::text) {
            argument.text = expanded(argument.text);
            hasOddText = hasOddText || !isUtf8(argument.text);
        }
    }
    ownView = view;
    if (view >= 0) {
        View& asked = views[static_cast<std::size_t>(view)];
        asked.navigationQuestions += name.starts_with("WebView_canGo") ? 1 : 0;
        asked.destroyed = asked.destroyed || name == "WebView_destroy";
    }
    if (step.view >= 0) {
        const Argument& target = arguments.front();
        views[static_cast<std::size_t>(step.view)].target =
            target.kind == Argument::Kind::targetName ? target.text : "";
    }
    const bool isDeafening =
        name == "WebView_setSendMessageFunction" || name == "WebView_setDataResultCallback";
    wasDeaf = wasDeaf || (isDeafening && arguments.front().kind == Argument::Kind::null);
    return arguments;
}

/// The live view with this handle, which may have been that of an earlier one.
int Session::liveView(const void* handle) const {
    const auto found = std::ranges::find_if(
        views, [handle](const View& view) { return handle && view.handle == handle && !view.destroyed; });
    return found == views.end() ? -1 : static_cast<int>(found - views.begin());
}

std::string Session::expanded(std::string text) const {
    const auto replace = [&text](std::string_view name, const std::string& value) {
        for (auto at = text.find(name); at != std::string::npos; at = text.find(name, at + value.size())) {
            text.replace(at, name.size(), value);
        }
    };
    replace("$SERVER", server.url(""));
    replace("$FOLDER", folder.path.string());
    return text;
}

void* Session::takeTexture(std::size_t index) {
    const std::scoped_lock lock(mutex);
    if (textures.empty()) {
        return nullptr;
    }
    const auto taken = textures.begin() + static_cast<std::ptrdiff_t>(index % textures.size());
    void* const texture = *taken;
    textures.erase(taken);
    return texture;
}

void Session::keep(const Step& step, UwpWebView* made) {
    require(made, "a view is made", step.text());
    const std::scoped_lock lock(mutex);
    views[static_cast<std::size_t>(step.view)].handle = made;
}

void Session::keep(const Step& step, char* cookies) {
    require(cookies && nlohmann::json::parse(cookies, nullptr, false).is_object(), "cookies are JSON",
            step.text());
    std::free(cookies);
}

void Session::keep(const Step& step, std::int32_t key) {
    require(key >= 0, "a key is given", step.text());
    const std::scoped_lock lock(mutex);
    keys.push_back(key);
}

void Session::keep(const Step&, ZarvikBool) {}

void Session::keep(const Step& step, ZarvikRenderFunction function) {
    require(function == renderFunction, "there is one render function", step.text());
}

void* Session::pointer(const Argument& argument) {
    switch (argument.kind) {
        case Argument::Kind::view:
            return argument.pointer;
        case Argument::Kind::texture:
            return takeTexture(static_cast<std::size_t>(argument.number));
        case Argument::Kind::address:
            return &something;
        default:
            return nullptr;
    }
}
