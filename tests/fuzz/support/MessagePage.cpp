#include "fuzz/support/MessagePage.h"

#include "fuzz/support/Require.h"

namespace {

constexpr int mostUses = 2000;

bool isHalf(char16_t unit) {
    return unit >= 0xD800 && unit < 0xE000;
}

/// The number of units of the character at the front; 0 if it is none.
std::size_t characterLength(std::u16string_view text) {
    if (!isHalf(text.front())) {
        return 1;
    }
    const bool isPair = text.front() < 0xDC00 && text.size() > 1 && isHalf(text[1]) && text[1] >= 0xDC00;
    return isPair ? 2 : 0;
}

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

std::string toUtf8(std::u16string_view text) {
    std::string bytes;
    const auto add = [&bytes](char32_t lead, char32_t code, int following) {
        bytes += static_cast<char>(lead | code >> (6 * following));
        while (following-- > 0) {
            bytes += static_cast<char>(0x80 | (code >> (6 * following) & 0x3F));
        }
    };
    while (!text.empty()) {
        const auto length = characterLength(text);
        char32_t code = length == 0 ? U'\uFFFD' : text.front();
        if (length == 2) {
            code = 0x10000 + ((char32_t{text[0]} - 0xD800) << 10) + (char32_t{text[1]} - 0xDC00);
        }
        if (code < 0x80) {
            bytes += static_cast<char>(code);
        } else if (code < 0x800) {
            add(0xC0, code, 1);
        } else if (code < 0x10000) {
            add(0xE0, code, 2);
        } else {
            add(0xF0, code, 3);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return bytes;
}
