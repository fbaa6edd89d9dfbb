#include "script_answers.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <limits>

#include "../page_process/answer.h"

using runtime::script_answers;

namespace {

constexpr uint64_t everything = std::numeric_limits<uint64_t>::max();

/// What the page's process writes: the head, which may lie about the text's size, and the text.
void write(script_answers const& answers, uint64_t number, std::string const& text, uint64_t size) {
    answer_head const head{number, size};
    ASSERT_EQ(::write(answers.file(), &head, sizeof head), static_cast<ssize_t>(sizeof head));
    ASSERT_EQ(::write(answers.file(), text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void write(script_answers const& answers, uint64_t number, std::string const& text) {
    write(answers, number, text, text.size());
}

std::string next(script_answers& answers, uint64_t last = everything) {
    auto const answer = answers.next(last);
    return answer ? std::to_string(answer->number) + answer->text : "none";
}

}  // namespace

TEST(ScriptAnswersTest, ComeInOrderAndInWholePieces) {
    script_answers answers;
    EXPECT_EQ(next(answers), "none");
    EXPECT_EQ(answers.latest(everything), 0U);
    std::string const large(3 << 20, 'x');
    write(answers, 1, "a");
    write(answers, 2, "");
    write(answers, 4, large);
    EXPECT_EQ(answers.latest(everything), 4U);
    EXPECT_EQ(answers.latest(3), 2U);
    EXPECT_EQ(next(answers), "1a");
    EXPECT_EQ(next(answers, 1), "none");
    EXPECT_EQ(next(answers), "2");
    EXPECT_EQ(next(answers), "4" + large);
    EXPECT_EQ(answers.latest(everything), 0U);

    write(answers, 5, "be", 4);
    EXPECT_EQ(next(answers), "none");
    EXPECT_EQ(::write(answers.file(), "gin", 2), 2);
    EXPECT_EQ(next(answers), "5begi");
}

TEST(ScriptAnswersTest, MayBeManyLargeOnes) {
    script_answers answers;
    std::string const large(64 << 20, 'x');
    for (uint64_t number = 1; number <= 6; ++number) {
        write(answers, number, large);
    }
    for (uint64_t number = 1; number <= 6; ++number) {
        EXPECT_TRUE(next(answers) == std::to_string(number) + large);
    }
}

// A page's process that was taken over can have the engine read neither for ever nor more than a bound.
TEST(ScriptAnswersTest, AreBounded) {
    {
        script_answers answers;  // a hole, as long as files can be: no memory for who makes it
        ASSERT_EQ(ftruncate(answers.file(), std::numeric_limits<off_t>::max()), 0);
        EXPECT_EQ(next(answers), "none");
        EXPECT_EQ(answers.latest(everything), 0U);
        EXPECT_EQ(next(answers), "none");
    }
    {
        script_answers answers;
        write(answers, 1, "the start of a text that never ends", everything);
        ASSERT_EQ(ftruncate(answers.file(), off_t{1} << 40), 0);
        EXPECT_EQ(next(answers), "none");
    }
}

TEST(ScriptAnswersTest, CannotBeRepeated) {
    script_answers answers;
    write(answers, 3, "a");
    write(answers, 3, "b");
    write(answers, 4, "c");
    EXPECT_EQ(answers.latest(everything), 3U);
    EXPECT_EQ(next(answers), "3a");
    EXPECT_EQ(next(answers), "none");
    EXPECT_EQ(next(answers), "none");
}
