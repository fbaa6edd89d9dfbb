// What the agent in a page tells the engine of whatever the page gives it, through a real page: valid JSON,
// which no text can leave.

#include "fuzz/support/MessagePage.h"
#include "fuzz/support/Require.h"

namespace {

void check(const std::string& script, const std::u16string& expected) {
    const auto text = toUtf8(expected);
    // The library reads these itself, wherever in a message their name stands.
    const bool isForTheLibrary = text.find("zarvik.webview.pageTransparencyDetermined") != std::string::npos;
    const auto received = MessagePage::shared().messagesOf(script);
    require(received == (isForTheLibrary ? std::vector<std::string>() : std::vector{text}),
            "the agent tells the text once and as JSON",
            readable(text) + (received.empty() ? "" : " as " + readable(received.front())));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = toUnits({data, size});
    const auto script = toScript(text);
    check("console.warn(" + script + ")",
          uR"({"type":"zarvik.webview.consoleMessageLogged","level":"WARNING","message":)" + toJson(text) +
              u"}");
    check("zarvik.postMessage({text: " + script + ", list: [" + script + "]})",
          uR"({"text":)" + toJson(text) + uR"(,"list":[)" + toJson(text) + u"]}");
    return 0;
}
