#include <gtest/gtest.h>
#include <urlmon.h>

#include <string>
#include <thread>
#include <vector>

#include "user_agent.h"

namespace {

HRESULT set(std::string text) {
    return UrlMkSetSessionOption(URLMON_OPTION_USERAGENT, text.data(), static_cast<DWORD>(text.size()), 0);
}

std::string get() {
    std::vector<char> buffer(300, '?');
    DWORD length = 0;
    EXPECT_EQ(UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, buffer.data(), 300, &length, 0), S_OK);
    EXPECT_EQ(buffer.at(length - 1), '\0');
    return {buffer.data(), length - 1};
}

class UserAgentTest : public testing::Test {
  protected:
    ~UserAgentTest() override {
        runtime::set_user_agent_listener(nullptr);
        set("");
    }
};

}  // namespace

TEST_F(UserAgentTest, IsSetFromAnyThreadAndAnnounced) {
    std::vector<std::string> heard;
    runtime::set_user_agent_listener([&](const std::string& text) { heard.push_back(text); });
    std::thread([] { EXPECT_EQ(set("Zarvik/4 (a; b (c\\)) d) x"), S_OK); }).join();
    EXPECT_EQ(get(), "Zarvik/4 (a; b (c\\)) d) x");
    EXPECT_EQ(set(std::string("Short\0 and the rest", 19)), S_OK);
    EXPECT_EQ(get(), "Short");
    EXPECT_EQ(heard, (std::vector<std::string>{"Zarvik/4 (a; b (c\\)) d) x", "Short"}));
}

TEST_F(UserAgentTest, RefusesWhatTheEngineWouldIgnore) {
    set("Before");
    for (const std::string text : {"a\nb", "a\r\nX-Forged: 1", "(comment first)", "a (open", "a; b", "a/b/c",
                                   " a", "a ", "\xC3\xBC", "a\x01", "[x]"}) {
        EXPECT_EQ(set(text), E_INVALIDARG) << text;
    }
    EXPECT_EQ(set("a " + std::string(1 << 20, '(')), E_INVALIDARG);
    EXPECT_EQ(set("a " + std::string(1 << 20, 'a') + ";"), E_INVALIDARG);
    char text[] = "a";
    EXPECT_EQ(UrlMkSetSessionOption(0x10000002, text, 1, 0), E_INVALIDARG);
    EXPECT_EQ(UrlMkSetSessionOption(URLMON_OPTION_USERAGENT, nullptr, 1, 0), E_INVALIDARG);
    EXPECT_EQ(UrlMkSetSessionOption(URLMON_OPTION_USERAGENT, text, 1, 1), E_INVALIDARG);
    EXPECT_EQ(get(), "Before");
}

TEST_F(UserAgentTest, NeedsRoomForTheWholeText) {
    set("12345");
    char buffer[6] = "?????";
    DWORD length = 0;
    EXPECT_EQ(UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, buffer, 5, &length, 0), E_OUTOFMEMORY);
    EXPECT_STREQ(buffer, "?????");
    EXPECT_EQ(length, 6u);
    EXPECT_EQ(UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, buffer, 6, &length, 0), S_OK);
    EXPECT_STREQ(buffer, "12345");
    EXPECT_EQ(UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, nullptr, 6, &length, 0), E_INVALIDARG);
    EXPECT_EQ(UrlMkGetSessionOption(URLMON_OPTION_USERAGENT, buffer, 6, nullptr, 0), E_INVALIDARG);
    EXPECT_EQ(UrlMkGetSessionOption(0, buffer, 6, &length, 0), E_INVALIDARG);
}
