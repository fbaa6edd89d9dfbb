#include "fuzz/support/MessagePage.h"

#include <sstream>

#include "fuzz/support/Require.h"

namespace {

constexpr int mostUses = 2000;

}  // namespace

MessagePage& MessagePage::shared() {
    static std::unique_ptr<MessagePage> page;
    if (page && ++page->uses > mostUses) {
        page.reset();  // first: there is one engine at a time
    }
    if (!page) {
        page.reset(new MessagePage);
    }
    return *page;
}

MessagePage::MessagePage() {
    engine.plugin().WebView_setConsoleMessageEventsEnabled(view.handle(), true);
    view.loadHtml("<title>page</title>");
    require(static_cast<bool>(view.waitForLoad()), "the page is loaded");
    // The last that the agent says by itself.
    require(engine.recorder()
                .waitFor([](const auto& record) {
                    return record.payload.find("titleChanged") != std::string::npos;
                })
                .has_value(),
            "the agent tells the title");
}

std::vector<std::string> MessagePage::messagesOf(const std::string& script) {
    const auto from = engine.recorder().position();
    require(view.evaluate(script).has_value(), "a script is answered", script);
    std::vector<std::string> messages;
    for (const auto& record : engine.recorder().since(from)) {
        if (record.method == "HandleMessageEmitted") {
            messages.push_back(record.payload);
        }
    }
    return messages;
}

std::string MessagePage::resultOf(const std::string& script) {
    return view.evaluate(script).value_or("no answer");
}

std::string MessagePage::utf8Of(const std::string& text) {
    std::istringstream bytes(resultOf("new TextEncoder().encode(" + text + ").join(' ')"));
    std::string utf8;
    for (int byte = 0; bytes >> byte;) {
        utf8 += static_cast<char>(byte);
    }
    return utf8;
}

std::u16string toUnits(std::span<const std::uint8_t> bytes) {
    std::u16string text;
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text += static_cast<char16_t>(bytes[i] | bytes[i + 1] << 8);
    }
    return text;
}

std::string toScript(std::u16string_view text) {
    std::string codes;
    for (const char16_t unit : text) {
        codes += (codes.empty() ? "" : ",") + std::to_string(static_cast<unsigned>(unit));
    }
    return "String.fromCharCode(" + codes + ")";
}
