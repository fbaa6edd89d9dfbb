#include "webview/PageScripts.h"

#include "agent/AgentScript.h"

namespace page_scripts {

namespace {

void replaceAll(std::string& text, std::string_view searched, std::string_view replacement) {
    for (auto position = text.find(searched); position != std::string::npos;
         position = text.find(searched, position + replacement.size())) {
        text.replace(position, searched.size(), replacement);
    }
}

/// The agent as the content of a string literal in single quotes. It has no escapes but these.
std::string quotedAgent() {
    std::string quoted(agentScript);
    replaceAll(quoted, R"(\r)", R"(\\r)");
    replaceAll(quoted, R"(\n)", R"(\\n)");
    replaceAll(quoted, "'", R"(\')");
    return quoted;
}

std::string text(bool value) {
    return value ? "true" : "false";
}

std::string text(std::int32_t value) {
    return std::to_string(value);
}

/// "first, second" with whatever stands between the arguments.
template <typename First, typename... Rest>
std::string joined(const char* separator, First first, Rest... rest) {
    return (text(first) + ... + (separator + text(rest)));
}

/// A call of a component of the agent. The separators differ between the components.
template <typename... Arguments>
std::string call(const char* function, const char* separator, Arguments... arguments) {
    return function + ("(" + joined(separator, arguments...)) + ")";
}

}  // namespace

const std::string_view evaluationHelper = R"(
        window._evalToString = function(js) {
            try {
                return new String(eval(js)).toString();
            } catch (error) {
                return error.toString();
            }
        };
    )";

const std::string_view frameWatcher = R"(
setInterval(() => {
  if (!window.zarvik) {
    return;
  }
  var iframes = document.querySelectorAll('iframe:not([data-zarvik-managed])');
  var emitIframeMessage = false;
  iframes.forEach(iframe => {
    iframe.setAttribute('data-zarvik-managed', true);
    var url = new URL(iframe.src);
    if (url.origin === location.origin) {
      iframe.setAttribute('data-zarvik-target', true);
      emitIframeMessage = true;
    }
  });
  if (emitIframeMessage) {
    zarvik.postMessage('zarvik.webview.uwp.iframesNeedBrowserAgent');
  }
}, 1000);
)";

const std::string& frameAgentStarter() {
    // Never destroyed: the UI thread still works while the process ends.
    static const auto& script = *new std::string(
        "document.querySelectorAll('iframe[data-zarvik-target]').forEach(iframe => { "
        "iframe.removeAttribute('data-zarvik-target');iframe.contentWindow.eval('" +
        quotedAgent() + ";window.__initZarvik();');});");
    return script;
}

std::string agentStart(bool consoleMessageEvents, bool focusedInputFieldEvents, double devicePixelRatio) {
    return std::string(agentScript) +
           ";window.__initZarvik({ enableConsoleMessageEvents: " + text(consoleMessageEvents) +
           ", enableFocusedInputFieldEvents: " + text(focusedInputFieldEvents) +
           ", expectedDevicePixelRatio: " + std::to_string(devicePixelRatio) + " });";
}

std::string setConsoleMessageEventsEnabled(bool enabled) {
    return call("_zarvikInternal.browserAgent.setConsoleMessageEventsEnabled", "", enabled) + ";";
}

std::string click(std::int32_t x, std::int32_t y) {
    return call("_zarvikInternal.pointerInputManager.click", ", ", x, y) + ";";
}

std::string pointerDown(std::int32_t x, std::int32_t y, std::int32_t mouseButton, std::int32_t clickCount) {
    return call("_zarvikInternal.pointerInputManager.pointerDown", ", ", x, y, mouseButton, clickCount) + ";";
}

std::string pointerUp(std::int32_t x, std::int32_t y, std::int32_t mouseButton, std::int32_t clickCount) {
    return call("_zarvikInternal.pointerInputManager.pointerUp", ", ", x, y, mouseButton, clickCount) + ";";
}

std::string movePointer(std::int32_t x, std::int32_t y, bool pointerLeave) {
    return call("_zarvikInternal.pointerInputManager.movePointer", ", ", x, y, pointerLeave) + ";";
}

std::string scroll(std::int32_t deltaX, std::int32_t deltaY) {
    return call("window.scrollBy", ",", deltaX, deltaY) + ";";
}

std::string scrollAtPoint(std::int32_t deltaX, std::int32_t deltaY, std::int32_t x, std::int32_t y) {
    return call("_zarvikInternal.scrollManager.scrollAtPoint", ",", deltaX, deltaY, x, y) + ";";
}

std::string sendKey(std::string key) {
    if (key == "Enter" || key == "\n") {
        key = R"(\n)";
    } else if (key == "Backspace") {
        key = "\b";
    } else if (key == R"(\)") {
        key = R"(\\)";
    } else if (key == "'") {
        key = R"(\')";
    }
    return "_zarvikInternal.keyboardInputManager.sendKey('" + key + "');";
}

std::string setFocused(bool focused) {
    return call("_zarvikInternal.focusManager.setFocused", "", focused);
}

}  // namespace page_scripts
