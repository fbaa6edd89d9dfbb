// The player's window, used with the mouse and the keyboard of the X server.

#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "Scenery.h"
#include "host/PlayerProgram.h"
#include "support/EngineTest.h"
#include "support/TemporaryFolder.h"
#include "support/TestServer.h"

// After all others: these define common words as macros.
#include <X11/Xlib.h>
#include <X11/extensions/XTest.h>
#include <X11/keysym.h>

namespace {

using namespace zarvik::player;
using std::chrono::milliseconds;
using zarvik::host::Size;

constexpr Size window{900, 600};
constexpr Size page{1280, 720};

// The button reports each click, the field each text, the page each scroll.
const std::string reportingPage = R"(<title>Reporting</title><style>body { margin: 0; height: 3000px }
    button { position: absolute; left: 100px; top: 100px; width: 300px; height: 120px }
    input { position: absolute; left: 100px; top: 300px; width: 300px; height: 60px }</style>
    <button></button><input><script>
    document.querySelector('button').onclick = () => fetch('/clicked');
    document.querySelector('button').ondblclick = () => fetch('/twice');
    document.querySelector('input').oninput = (event) => fetch('/typed-' + event.target.value);
    addEventListener('pointerdown', (event) => { if (event.button === 2) { fetch('/right'); } });
    addEventListener('scroll', () => fetch('/scrolled-' + scrollY));
    </script>)";

/// The X server's mouse and keyboard. Without a window manager the window stands in the upper left corner.
class Desktop {
  public:
    Desktop() : display(XOpenDisplay(nullptr), XCloseDisplay) {}

    bool usable() const {
        int ignored = 0;
        return display && XTestQueryExtension(display.get(), &ignored, &ignored, &ignored, &ignored);
    }

    void move(Point point) {
        XTestFakeMotionEvent(display.get(), -1, static_cast<int>(point.x), static_cast<int>(point.y),
                             CurrentTime);
        settle();
    }
    void button(unsigned number, bool pressed) {
        XTestFakeButtonEvent(display.get(), number, pressed, CurrentTime);
        settle();
    }
    void click(unsigned number) {
        button(number, true);
        button(number, false);
    }
    void key(KeySym symbol, KeySym modifier = NoSymbol) {
        const auto code = [&](KeySym each) { return XKeysymToKeycode(display.get(), each); };
        if (modifier != NoSymbol) {
            XTestFakeKeyEvent(display.get(), code(modifier), 1, CurrentTime);
        }
        XTestFakeKeyEvent(display.get(), code(symbol), 1, CurrentTime);
        XTestFakeKeyEvent(display.get(), code(symbol), 0, CurrentTime);
        if (modifier != NoSymbol) {
            XTestFakeKeyEvent(display.get(), code(modifier), 0, CurrentTime);
        }
        settle();
    }

  private:
    /// Lets the program see one thing after the other, as a person's hands do.
    void settle() {
        XSync(display.get(), 0);
        std::this_thread::sleep_for(milliseconds(40));
    }

    std::unique_ptr<Display, int (*)(Display*)> display;
};

}  // namespace

TEST(WindowTest, MouseAndKeyboardReachThePageAndAreRecorded) {
    Desktop desktop;
    ASSERT_TRUE(desktop.usable()) << "The X server has no XTEST extension";
    TestServer server;
    TemporaryFolder folder;
    server.page("/", reportingPage);
    server.page("/other", "<script>fetch('/other-came')</script>");
    for (const std::string path :
         {"/clicked", "/twice", "/right", "/typed-k", "/scrolled-100", "/other-came"}) {
        server.page(path, "");
    }
    Scenery scenery;
    scenery.stage =
        std::make_shared<Stage>(std::vector<Size>{page, page});  // the guide stands beside the page
    scenery.window = window;
    scenery.camera = scenery.stage->camera(window, Scenery::toolbarHeight);
    scenery.pages = {{.view = nullptr, .size = page}, {.view = nullptr, .size = page}};
    const auto onButton = scenery.windowPointOf(0, {250, 160});
    const auto onField = scenery.windowPointOf(0, {250, 330});
    ASSERT_TRUE(onButton && onField);

    const auto recording = folder / "recording.script";
    PlayerProgram player({"--window", "--window-size", "900x600", "--record", recording, server.url("/")});
    // The agent in the page works once it has reported the title.
    ASSERT_TRUE(waitUntil([&] {
        return player.output().find("titleChanged\",\"value\":\"Reporting\"") != std::string::npos;
    })) << player.output();

    desktop.move(*onButton);
    desktop.click(Button1);
    desktop.click(Button1);  // at once: how long a double click may take is not for the machine to decide
    EXPECT_TRUE(server.waitForRequest("/clicked")) << player.output();
    EXPECT_TRUE(server.waitForRequest("/twice")) << player.output();
    desktop.click(Button3);
    EXPECT_TRUE(server.waitForRequest("/right")) << player.output();
    desktop.move(*onField);
    desktop.click(Button1);
    desktop.key(XK_k);
    EXPECT_TRUE(server.waitForRequest("/typed-k")) << player.output();
    desktop.click(Button5);
    EXPECT_TRUE(server.waitForRequest("/scrolled-100")) << player.output();

    // A drag with the right button turns the scene.
    desktop.button(Button3, true);
    desktop.move({onField->x + 100, onField->y + 20});
    desktop.button(Button3, false);
    // The address.
    desktop.key(XK_l, XK_Control_L);
    for (const char character : server.url("/other")) {
        const bool shifted = character == ':';
        desktop.key(shifted ? XK_semicolon : static_cast<KeySym>(static_cast<unsigned char>(character)),
                    shifted ? XK_Shift_L : NoSymbol);
    }
    desktop.key(XK_Return);
    EXPECT_TRUE(server.waitForRequest("/other-came")) << player.output();

    player.interrupt();
    EXPECT_EQ(player.wait(), 130) << player.output();
    const auto text = readFile(recording);
    for (const std::string& line : {"open " + server.url("/"), std::string("type k"),
                                    "load " + server.url("/other"), std::string("camera -25 10 ")}) {
        EXPECT_NE(text.find("\n" + line), std::string::npos) << line << " in:\n" << text;
    }
}
