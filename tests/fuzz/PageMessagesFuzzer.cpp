// What a page sends to the engine, through a real page: each text arrives once, as far as a C text can hold
// it. And what a page's process may send in place of our script: it is told apart, or nothing.

#include "fuzz/support/MessagePage.h"
#include "fuzz/support/Require.h"
#include "page_message.h"

namespace {

/// What the library reads itself. The engine does not hear of it.
bool isForTheLibrary(const std::string& message) {
    return message.find("zarvik.webview.pageTransparencyDetermined") != std::string::npos ||
           message == "zarvik.webview.uwp.iframesNeedBrowserAgent";
}

void checkParsing(std::string_view text) {
    const auto message = runtime::parse_page_message(text);
    if (!message) {
        return;
    }
    require(text.ends_with(message->argument), "an argument is the end of its message", readable(text));
    const std::string again = std::to_string(message->document) + " " + std::to_string(message->object) +
                              " " + std::to_string(message->method) + " " + std::string(message->argument);
    const auto second = runtime::parse_page_message(again);
    require(second && second->document == message->document && second->object == message->object &&
                second->method == message->method && second->argument == message->argument,
            "a message is what it was written from", readable(text));
}

void checkArrival(std::u16string_view text) {
    auto& page = MessagePage::shared();
    const auto script = toScript(text);
    const auto utf8 = page.utf8Of(script);
    std::vector<std::string> expected;
    if (!isForTheLibrary(utf8)) {
        expected.emplace_back(utf8.c_str());
    }
    const auto received = page.messagesOf("_zarvikBridge.postMessage(" + script + ")");
    require(received == expected, "a page's message arrives once and as it is",
            readable(utf8) + ": " + std::to_string(received.size()) + " messages" +
                (received.empty() ? "" : ", " + readable(received.front())));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    checkParsing({reinterpret_cast<const char*>(data), size});
    checkArrival(toUnits({data, size}));
    return 0;
}
