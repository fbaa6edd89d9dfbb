// The player as people run it: scripts through the 3D scene, pictures, recordings, mistakes.

#include <gtest/gtest.h>
#include <png.h>

#include "Scenery.h"
#include "host/PlayerProgram.h"
#include "support/TemporaryFolder.h"
#include "support/TestServer.h"

namespace {

using namespace zarvik::player;
using zarvik::host::Image;
using zarvik::host::Size;

/// Counts and keeps what happens to it. Its ground is one colour, its button another.
const std::string testPage = R"(<title>Test</title><style>
    body { margin: 0; background: rgb(20, 120, 60); height: 3000px }
    button { position: absolute; left: 40px; top: 40px; width: 240px; height: 120px; border: 0;
             background: rgb(200, 30, 90) }
    input { position: absolute; left: 40px; top: 200px; width: 240px; height: 40px }
    #list { position: absolute; left: 340px; top: 40px; width: 200px; height: 200px; overflow: auto }
    #list div { height: 900px; background: rgb(30, 60, 200) }
    </style><button>Press</button><input><div id=list><div></div></div><a href="/next">next</a><script>
    var clicks = 0, doubleClicks = 0, right = 0, moves = 0, dragged = 0;
    var button = document.querySelector('button');
    button.addEventListener('click', () => { ++clicks; });
    button.addEventListener('dblclick', () => { ++doubleClicks; });
    addEventListener('pointerdown', (event) => { right += event.button === 2 ? 1 : 0; });
    addEventListener('pointermove', (event) => { dragged += event.buttons === 1 ? 1 : 0; });
    function state() {
        return 'state ' + [clicks, doubleClicks, right, dragged > 5, document.querySelector('input').value,
            document.querySelector('#list').scrollTop, scrollY, innerWidth + 'x' + innerHeight].join(' ');
    }</script>)";

Image readPicture(const std::string& file) {
    png_image header{};
    header.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&header, file.c_str())) {
        return {};
    }
    header.format = PNG_FORMAT_BGRA;
    Image image(static_cast<int>(header.width), static_cast<int>(header.height));
    png_image_finish_read(&header, nullptr, image.pixels.data(), 0, nullptr);
    return image;
}

class PlayerTest : public testing::Test {
  protected:
    PlayerTest() { server.page("/", testPage); }

    PlayerResult play(const std::string& script, std::vector<std::string> more = {}) {
        more.insert(more.end(), {"--headless", "--script", folder.write("test.script", script)});
        return runPlayer(std::move(more));
    }

    TestServer server;
    TemporaryFolder folder;
};

/// Whether the output has this line.
bool says(const PlayerResult& result, const std::string& line) {
    return ("\n" + result.output).find("\n" + line + "\n") != std::string::npos;
}

}  // namespace

TEST_F(PlayerTest, AScriptUsesAPageThroughTheScene) {
    const auto picture = folder / "picture.png";
    const auto result = play("load " + server.url("/") + R"(
        wait load
        click button
        click page 50 50
        double-click button
        right-click page 300 20
        click input
        type hé!
        key Backspace
        key ArrowLeft
        type "x "
        scroll 0 70 at #list
        scroll 0 25
        drag page 300 60 to page 300 220
        print state()
        camera 25 15 3
        click page 60 60
        resize 640 480
        wait true innerWidth === 640
        camera reset
        print state()
        wait element button
        wait text Press
        screenshot )" + picture + "\n",
                             {"--window-size", "1000x700"});
    ASSERT_EQ(result.exitCode, 0) << result.output;
    EXPECT_TRUE(says(result, "state 4 1 1 true hx é 70 25 1280x720")) << result.output;
    EXPECT_TRUE(says(result, "state 5 1 1 true hx é 70 25 640x480")) << result.output;

    const auto image = readPicture(picture);
    ASSERT_EQ(image.width, 1000);
    ASSERT_EQ(image.height, 700);
    Scenery scenery;
    scenery.stage = std::make_shared<Stage>(std::vector<Size>{{640, 480}});
    scenery.window = {1000, 700};
    scenery.camera = scenery.stage->camera(scenery.window, Scenery::toolbarHeight);
    scenery.pages = {{.view = nullptr, .size = {640, 480}}};
    const auto colourAt = [&](Point pixel) {
        const auto point = scenery.windowPointOf(0, pixel);
        return point ? image.at(static_cast<int>(point->x), static_cast<int>(point->y)) : Image::Pixel{};
    };
    // The page is scrolled by 25 pixels.
    EXPECT_EQ(colourAt({60, 30}), (Image::Pixel{90, 30, 200, 255}));
    EXPECT_EQ(colourAt({600, 400}), (Image::Pixel{60, 120, 20, 255}));
    EXPECT_EQ(colourAt({400, 100}), (Image::Pixel{200, 60, 30, 255}));
}

TEST_F(PlayerTest, ARecordingPlaysToTheSameState) {
    server.page("/next", "<title>Next</title><script>var state = () => 'never'</script>");
    const auto recording = folder / "recording.script";
    const auto recorded = play("open guide\nopen " + server.url("/") + R"(
        wait load 2
        view 2
        click button
        wait 0.1
        double-click button
        click input
        type a  b
        key Enter
        scroll 0 60 at #list
        drag page 300 60 to page 310 220
        resize 800 600
        wait true innerWidth === 800
        camera -20 10 4
        click a
        wait load
        back
        wait load
        wait true typeof clicks === 'number'
        click button
        click input
        type again
        scroll 0 40
        print state()
        )",
                               {"--record", recording, "--window-size", "1100x700"});
    ASSERT_EQ(recorded.exitCode, 0) << recorded.output;
    const auto begin = recorded.output.find("\nstate ") + 1;
    const auto state = recorded.output.substr(begin, recorded.output.find('\n', begin) - begin);

    const auto text = readFile(recording);
    for (const std::string line : {"window 1100 700", "open guide", "wait load 1", "resize 800 600", "back",
                                   "camera -20 10 4", "type again"}) {
        EXPECT_NE(text.find("\n" + line + "\n"), std::string::npos) << line << " in:\n" << text;
    }
    EXPECT_EQ(text.find("button"), std::string::npos) << "selectors are recorded as places: " << text;
    const auto played = play(text + "print state()\n");
    ASSERT_EQ(played.exitCode, 0) << played.output << text;
    EXPECT_TRUE(says(played, state)) << "expected " << state << ", got:\n" << played.output << text;
}

TEST_F(PlayerTest, TheToolbarLeadsAwayFromAPageThatDoesNotAnswer) {
    server.stalledPage("/stalled");
    const auto recording = folder / "recording.script";
    const auto result = play("open " + server.url("/stalled") + R"(
        wait 0.5
        click 500 26
        type )" + server.url("/") +
                                 R"(
        key Enter
        wait load
        print state()
        click 500 26
        type )" + server.url("/missing") +
                                 R"(
        key Enter
        wait failure
        wait painted
        click 28 26
        wait load
        print document.title
        )",
                             {"--record", recording});
    ASSERT_EQ(result.exitCode, 0) << result.output;
    EXPECT_TRUE(says(result, "state 0 0 0 false  0 0 1280x720")) << result.output;
    EXPECT_TRUE(says(result, "Test")) << result.output;
    // What it asked for is recorded, not how.
    const auto text = readFile(recording);
    EXPECT_NE(text.find("\nload " + server.url("/") + "\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\nwait failure 1\n"), std::string::npos) << text;
    EXPECT_NE(text.find("\nback\n"), std::string::npos) << text;
    EXPECT_EQ(text.find("click"), std::string::npos) << text;
}

TEST_F(PlayerTest, FailuresAreToldWithLineAndExitCode) {
    const auto script = folder / "test.script";
    const auto load = "load " + server.url("/") + "\nwait load\n";
    const auto expectFailure = [&](const std::string& text, const std::string& line,
                                   const std::string& reason) {
        const auto result = play(text);
        EXPECT_EQ(result.exitCode, 1) << result.output;
        EXPECT_TRUE(says(result, script + ":" + line + ": " + reason)) << result.output;
    };
    expectFailure(load + "timeout 0.3\nwait text absent\n", "4",
                  "timed out after 0.3 s: the page has no text 'absent'");
    const auto hang = load + "timeout 0.5\nprint setTimeout(() => { for (;;); }, 100)\nwait 0.3\n";
    expectFailure(hang + "click button\n", "6", "timed out after 0.5 s: the page does not answer");
    expectFailure(hang + "wait true true\n", "6",
                  "timed out after 0.5 s: this is not true: true (the page does not answer)");
    expectFailure(load + "click #absent\n", "3", "the page has no element '#absent'");
    expectFailure(load + "click page 5 5000\n", "3",
                  "this point of the page is outside the visible part of the page: scroll first");
    expectFailure(load + "camera 180 5 3\nclick button\n", "4",
                  "'button' cannot be seen in the window: move the camera");
    expectFailure("back\n", "1", "no page is open");
    expectFailure("load http://127.0.0.1:" + std::to_string(closedPort()) + "/\nwait load\n", "2",
                  "Page load failed with WebErrorStatus: 14");

    const auto unreadable = play("wait 1\nhop\n");
    EXPECT_EQ(unreadable.exitCode, 2);
    EXPECT_TRUE(unreadable.output.starts_with(script + ":2: there is no step 'hop'")) << unreadable.output;
    EXPECT_EQ(runPlayer({"--size", "10"}).exitCode, 2);
    EXPECT_EQ(runPlayer({"--headless", "no such file"}).exitCode, 2);
}

TEST_F(PlayerTest, WithoutAScriptThePagesAreDrawnAndCounted) {
    const auto picture = folder / "picture.png";
    const auto result =
        runPlayer({"--screenshot", picture, "--window-size", "640x400", "--stats", server.url("/"), "guide"});
    ASSERT_EQ(result.exitCode, 0) << result.output;
    EXPECT_EQ(readPicture(picture).width, 640);
    EXPECT_NE(result.output.find("\npictures uploaded   View2: "), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("\nprocessor time  "), std::string::npos) << result.output;
}
