// What the agent in a page tells the engine of whatever the page gives it, through a real page: valid JSON,
// which no text can leave.

#include <nlohmann/json.hpp>

#include "fuzz/support/MessagePage.h"
#include "fuzz/support/Require.h"

namespace {

/// The page itself says whether what the engine got, as the variable `got`, is what it gave the agent.
void check(MessagePage& page, const std::string& script, const std::string& isRight, bool isForTheLibrary) {
    const auto received = page.messagesOf(script);
    require(received.size() == (isForTheLibrary ? 0U : 1U), "the agent tells the text once", script);
    for (const auto& message : received) {
        const auto got = "const got = JSON.parse(" + nlohmann::json(message).dump() + ");";
        require(page.resultOf("(() => { " + got + " return " + isRight + " })()") == "true",
                "the agent tells the text as JSON", script + " as " + readable(message));
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& page = MessagePage::shared();
    const auto text = toScript(toUnits({data, size}));
    // The library reads these itself, wherever in a message their name stands.
    const bool isForTheLibrary =
        page.utf8Of(text).find("zarvik.webview.pageTransparencyDetermined") != std::string::npos;
    check(
        page, "console.warn(" + text + ")",
        "got.type === 'zarvik.webview.consoleMessageLogged' && got.level === 'WARNING' && got.message === " +
            text,
        isForTheLibrary);
    check(page, "zarvik.postMessage({text: " + text + ", list: [" + text + "]})",
          "got.text === " + text + " && got.list[0] === got.text", isForTheLibrary);
    return 0;
}
