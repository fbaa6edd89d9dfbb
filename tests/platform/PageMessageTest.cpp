#include "page_message.h"

#include <gtest/gtest.h>

using runtime::parse_page_message;

TEST(PageMessageTest, TellsTheNumbersFromTheArgument) {
    const auto message = parse_page_message("12 3 4 5 six ");
    ASSERT_TRUE(message);
    EXPECT_EQ(message->document, 12U);
    EXPECT_EQ(message->object, 3U);
    EXPECT_EQ(message->method, 4U);
    EXPECT_EQ(message->argument, "5 six ");
    EXPECT_EQ(parse_page_message("1 2 3 ")->argument, "");
}

TEST(PageMessageTest, RefusesWhatNoScriptOfOursSends) {
    for (const char* const text : {"", " ", "1", "1 2", "1 2 3", "1 2 3x", "a 2 3 x", "1  2 3 x", "-1 2 3 x",
                                   "1 2 ", "1 99999999999999999999 3 x"}) {
        EXPECT_FALSE(parse_page_message(text)) << text;
    }
}
