#include "webview/PageScripts.h"

#include <gtest/gtest.h>

#include "agent/AgentScript.h"

TEST(PageScriptsTest, InputIsOneLineOfScript) {
    using namespace page_scripts;
    EXPECT_EQ(click(10, -3), "_zarvikInternal.pointerInputManager.click(10, -3);");
    EXPECT_EQ(pointerDown(16, 30, 0, 1), "_zarvikInternal.pointerInputManager.pointerDown(16, 30, 0, 1);");
    EXPECT_EQ(pointerUp(INT32_MIN, INT32_MAX, 2, 2),
              "_zarvikInternal.pointerInputManager.pointerUp(-2147483648, 2147483647, 2, 2);");
    EXPECT_EQ(movePointer(1, 2, true), "_zarvikInternal.pointerInputManager.movePointer(1, 2, true);");
    EXPECT_EQ(movePointer(1, 2, false), "_zarvikInternal.pointerInputManager.movePointer(1, 2, false);");
    EXPECT_EQ(scroll(0, 120), "window.scrollBy(0,120);");
    EXPECT_EQ(scrollAtPoint(-1, 2, 3, 4), "_zarvikInternal.scrollManager.scrollAtPoint(-1,2,3,4);");
    EXPECT_EQ(setFocused(true), "_zarvikInternal.focusManager.setFocused(true)");
    EXPECT_EQ(setFocused(false), "_zarvikInternal.focusManager.setFocused(false)");
    EXPECT_EQ(setConsoleMessageEventsEnabled(false),
              "_zarvikInternal.browserAgent.setConsoleMessageEventsEnabled(false);");
}

TEST(PageScriptsTest, KeysAreEscapedOnlyAsAWhole) {
    const auto argument = [](const char* key) {
        const std::string script = page_scripts::sendKey(key);
        const std::string before = "_zarvikInternal.keyboardInputManager.sendKey('";
        const std::string after = "');";
        EXPECT_TRUE(script.starts_with(before) && script.ends_with(after)) << script;
        return script.substr(before.size(), script.size() - before.size() - after.size());
    };
    EXPECT_EQ(argument("Enter"), R"(\n)");
    EXPECT_EQ(argument("\n"), R"(\n)");
    EXPECT_EQ(argument("Backspace"), "\b");
    EXPECT_EQ(argument("\\"), R"(\\)");
    EXPECT_EQ(argument("'"), R"(\')");
    EXPECT_EQ(argument("ArrowLeft"), "ArrowLeft");
    EXPECT_EQ(argument("it's\\"), "it's\\");
    EXPECT_EQ(argument("😀"), "😀");
    EXPECT_EQ(argument(""), "");
}

TEST(PageScriptsTest, TheAgentStartsWithItsOptions) {
    EXPECT_TRUE(agentScript.starts_with(R"(if(typeof Object.assign!="function"))"));
    EXPECT_EQ(page_scripts::agentStart(true, false, 1.5),
              std::string(agentScript) +
                  ";window.__initZarvik({ enableConsoleMessageEvents: true, enableFocusedInputFieldEvents: "
                  "false, expectedDevicePixelRatio: 1.500000 });");
}

TEST(PageScriptsTest, FramesGetTheAgentAsAQuotedText) {
    const std::string before =
        "document.querySelectorAll('iframe[data-zarvik-target]').forEach(iframe => { "
        "iframe.removeAttribute('data-zarvik-target');iframe.contentWindow.eval('";
    const std::string after = ";window.__initZarvik();');});";
    const std::string& script = page_scripts::frameAgentStarter();
    ASSERT_TRUE(script.starts_with(before) && script.ends_with(after));
    // What a script engine makes of the quoted text.
    std::string unquoted;
    for (auto i = before.size(); i < script.size() - after.size(); ++i) {
        ASSERT_NE(script[i], '\'') << "ends the literal at " << i;
        if (script[i] == '\\') {
            ++i;
            ASSERT_TRUE(script[i] == '\\' || script[i] == '\'') << "an escape of the agent itself at " << i;
        }
        unquoted += script[i];
    }
    EXPECT_EQ(unquoted, agentScript);
}
