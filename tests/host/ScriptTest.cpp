// The player's scripts as text: what can be read, what cannot and why, and what a recording says.

#include "Script.h"

#include <gtest/gtest.h>

#include <sstream>

#include "SessionRecorder.h"
#include "support/TemporaryFolder.h"

namespace {

using namespace zarvik::player;
using std::chrono::milliseconds;

Script read(const std::string& text) {
    std::istringstream stream(text);
    return Script::read(stream, "test.script");
}

std::string complaintAbout(const std::string& text) {
    try {
        read(text);
        return "none";
    } catch (const ScriptError& error) {
        return error.what();
    }
}

/// What a recording of these actions says, with the pause before each.
class Recording {
  public:
    Recording& add(int pause, const Action& action) {
        now += milliseconds(pause);
        recorder->performed(action, now);
        return *this;
    }
    Recording& loaded(int pause, std::size_t view) {
        now += milliseconds(pause);
        recorder->loadEnded(view, true, now);
        return *this;
    }
    std::string text() {
        recorder.reset();
        const auto content = readFile(folder / "recording");
        return content.substr(content.find('\n') + 1);  // after the comment
    }

  private:
    TemporaryFolder folder;
    std::optional<SessionRecorder> recorder{folder / "recording"};
    SessionRecorder::Clock::time_point now{};
};

const WindowPoint here{{10, 20.5}};
const WindowPoint there{{30, 40}};

}  // namespace

TEST(ScriptTest, EveryActionIsReadAsItIsWritten) {
    const std::string text =
        "open https://example.org/a b\nload welcome\nback\nforward\nreload\nstop\nview 2\nresize 640 480\n"
        "window 1000 700\nmove 1 2.25\npress page 3 4\npress right double #a > b\nrelease middle 5 6\n"
        "click a.to b\ndouble-click 7 8\nright-click 1 2\nmiddle-click 1 2\ndrag 1 2 to page 3 4\nscroll 0 "
        "-120\n"
        "scroll 10 0 at #list\ntype  a \"quoted\" text\ntype \" x\\n\"\nkey ArrowLeft\ncamera -12.5 3 4.25\n"
        "camera reset\n";
    std::string written;
    for (const auto& line : read(text).lines) {
        written += toText(std::get<Action>(line.step)) + "\n";
    }
    EXPECT_EQ(written, [&] {
        auto expected = text;
        return expected.replace(expected.find("type  a"), 7, "type a");
    }());
}

TEST(ScriptTest, CommentsBlanksAndLineEndingsOfOtherSystemsSayNothing) {
    const auto script = read("# first\r\n\r\n   \t\n  wait 0.5 \r\n#\nscreenshot a b.png");
    ASSERT_EQ(script.lines.size(), 2U);
    EXPECT_EQ(script.lines[0].number, 4);
    EXPECT_EQ(std::get<steps::Wait>(std::get<Check>(script.lines[0].step)).seconds, 0.5);
    EXPECT_EQ(std::get<steps::Screenshot>(std::get<Check>(script.lines[1].step)).file, "a b.png");
}

TEST(ScriptTest, MistakesAreToldWithFileLineAndReason) {
    EXPECT_TRUE(
        complaintAbout("wait 1\n\njump 3").starts_with("test.script:3: there is no step 'jump': use open, "));
    const std::pair<const char*, const char*> mistakes[] = {
        {"click", "click: a place (X Y, page X Y, or a CSS selector) is missing"},
        {"click 5", "click: Y is missing"},
        {"click 5 six", "click: Y is not a number: 'six'"},
        {"click 5 6 7", "click: too much: '7'"},
        {"drag 5 6", "drag: 'PLACE to PLACE' is missing"},
        {"resize 0 10", "resize: WIDTH is not a whole number from 1 to 16384"},
        {"resize 10.5 10", "resize: WIDTH is not a whole number from 1 to 16384"},
        {"type \"open", "type: the text in quotation marks is not well formed"},
        {"camera 1 2 0", "camera: DISTANCE must be greater than 0"},
        {"wait -1", "wait: SECONDS must not be negative"},
        {"timeout nan", "timeout: SECONDS is not a number: 'nan'"},
    };
    for (const auto& [text, complaint] : mistakes) {
        EXPECT_EQ(complaintAbout(text), std::string("test.script:1: ") + complaint);
    }
    EXPECT_THROW(Script::read(std::filesystem::path("/nonexistent/script")), ScriptError);
    EXPECT_THROW(Script::read(std::filesystem::path("/tmp")), ScriptError);
}

TEST(RecordingTest, WhatBelongsTogetherIsOneLineWithThePausesBetween) {
    using namespace steps;
    EXPECT_EQ(Recording()
                  .add(0, Open{"https://example.org/"})
                  .loaded(700, 1)
                  .add(1000, Move{there})
                  .add(16, Move{here})
                  .add(20, Press{.place = here})
                  .add(90, steps::Release{.place = here})
                  .add(500, Type{"a"})
                  .add(120, Type{"b "})
                  .add(300, Key{"Enter"})
                  .text(),
              "open https://example.org/\nwait load 1\nwait 1.00\nmove 10 20.5\nclick 10 20.5\nwait 0.63\n"
              "type \"ab \"\nwait 0.42\nkey Enter\n");
}

TEST(RecordingTest, ADoubleClickIsOneAndALongPressIsNone) {
    using namespace steps;
    Recording recording;
    for (const int count : {1, 2}) {
        recording.add(100, Press{.place = here, .clickCount = count})
            .add(50, steps::Release{.place = here, .clickCount = count});
    }
    recording.add(1000, Press{.place = here, .button = Button::right})
        .add(1000, steps::Release{.place = here, .button = Button::right});
    EXPECT_EQ(recording.text(),
              "double-click 10 20.5\nwait 1.20\npress right 10 20.5\nwait 1.00\nrelease right 10 20.5\n");
}
