#include "webview/PageScripts.h"

#include <gtest/gtest.h>

#include "agent/AgentScript.h"

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
