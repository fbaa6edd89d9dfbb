// Input that the engine forwards, as pages see it.

#include "support/EngineTest.h"

namespace {

constexpr std::int32_t leftButton = 0;
constexpr std::int32_t rightButton = 1;

/// Appends what happens to the document to the array `seen`.
const std::string recordingScript = R"(<script>
    var seen = [];
    const record = (event) => seen.push([event.type, event.target.id, event.clientX, event.clientY,
                                         event.button, event.buttons, event.detail].join(' '));
    for (const type of ['pointermove', 'pointerover', 'pointerdown', 'mousedown', 'pointerup', 'mouseup',
                        'click', 'dblclick']) {
        addEventListener(type, record);
    }
</script>)";

class InputTest : public ViewTest {
  protected:
    /// Sends a text as the engine does: one key for each character.
    void type(const std::string& text) {
        for (std::size_t i = 0; i < text.size();) {
            std::size_t length = 1;
            while (i + length < text.size() &&
                   (static_cast<unsigned char>(text[i + length]) & 0xC0U) == 0x80U) {
                ++length;
            }
            plugin().WebView_sendKey(view.handle(), text.substr(i, length).c_str());
            i += length;
        }
    }

    void press(const std::string& key) { plugin().WebView_sendKey(view.handle(), key.c_str()); }
};

}  // namespace

TEST_F(InputTest, PressesAndMovesArriveAtThePointScaledByTheZoom) {
    loadHtml(view, recordingScript + R"(<style>body { margin: 0 } div { width: 100px; height: 100px }</style>
                                        <div id=a></div><div id=b></div>)");
    plugin().WebView_movePointer(view.handle(), 10, 20, 0);
    plugin().WebView_pointerDown(view.handle(), 10, 120, rightButton, 1);
    plugin().WebView_pointerUp(view.handle(), 10, 120, rightButton, 1);
    EXPECT_EQ(evaluate("seen.join()"),
              "pointermove a 10 20 0 0 0,pointerover a 10 20 0 0 0,"
              "pointermove b 10 120 0 0 0,pointerover b 10 120 0 0 0,"
              "pointerdown b 10 120 2 2 1,mousedown b 10 120 2 2 1,"
              "pointerup b 10 120 0 0 1,mouseup b 10 120 0 0 1,click b 10 120 0 0 1");

    for (int i = 0; i < 5; ++i) {
        plugin().WebView_zoomOut(view.handle());
    }
    evaluate("seen = []");
    plugin().WebView_pointerDown(view.handle(), 11, 20, leftButton, 1);
    plugin().WebView_movePointer(view.handle(), 11, 21, 0);
    plugin().WebView_movePointer(view.handle(), 11, 21, 1);
    plugin().WebView_pointerUp(view.handle(), 11, 20, leftButton, 2);
    EXPECT_EQ(evaluate("seen.join()"),
              "pointermove a 16 30 0 0 0,pointerover a 16 30 0 0 0,pointerdown a 16 30 0 1 1,mousedown a 16 "
              "30 0 1 1,"
              "pointermove a 16 31 0 1 0,pointermove a 0 0 0 1 0,"
              "pointerup a 16 30 0 0 2,mouseup a 16 30 0 0 2,click a 16 30 0 0 2,dblclick a 16 30 0 0 2");
}

TEST_F(InputTest, TextGoesIntoTheFocusedField) {
    // Each character moves the caret by one UTF-16 unit, so what follows an emoji would stand in the middle
    // of it.
    const std::string text = "Ünï 日本 'quoted' \"double\" \\ <b>&amp; \u2028 😀";
    loadHtml(view,
             "<meta charset=utf-8><input id=input><textarea id=area></textarea><div id=edit "
             "contenteditable></div>");
    for (const std::string id : {"input", "area"}) {
        evaluate(id + ".focus()");
        type(text);
        EXPECT_EQ(evaluate(id + ".value"), text);
        // In the middle.
        evaluate(id + ".value = 'abcd'; " + id + ".setSelectionRange(2, 2)");
        press("ArrowLeft");
        type("X");
        press("ArrowRight");
        press("Backspace");
        EXPECT_EQ(evaluate("[" + id + ".value, " + id + ".selectionStart]"), "aXcd,2");
    }
    press("Enter");
    EXPECT_EQ(evaluate("area.value"), "aX\ncd");
    evaluate("edit.focus()");
    type("ab");
    EXPECT_EQ(evaluate("edit.innerText"), "ab");
}

TEST_F(InputTest, InputGoesOnIntoAFrameWhoseAgentRuns) {
    server.page("/frame",
                "<style>* { margin: 0 } html { overflow: auto }</style><input id=text style='width: 100px; "
                "height: 20px'>"
                "<div style='height: 1000px'></div>");
    server.page("/page",
                "<style>* { margin: 0 }</style>"
                "<iframe src=/frame style='border: 0; position: absolute; left: 50px; top: 40px'></iframe>"
                "<div style='height: 2000px'></div>");
    load(view, server.url("/page"));
    ASSERT_TRUE(waitForResult(view, "typeof frames[0].__initZarvik", "function"));
    evaluate("frames[0].__initZarvik({ expectedDevicePixelRatio: 1 })");
    plugin().WebView_click(view.handle(), 60, 50);
    ASSERT_TRUE(waitForResult(view, "frames[0].document.activeElement.id", "text"));
    EXPECT_EQ(evaluate("document.hasFocus()"), "true");
    type("aü");
    EXPECT_TRUE(waitForResult(view, "frames[0].document.querySelector('input').value", "aü"));
    press("Backspace");
    EXPECT_TRUE(waitForResult(view, "frames[0].document.querySelector('input').value", "a"));
    plugin().WebView_scrollAtPoint(view.handle(), 0, 30, 60, 100);
    EXPECT_TRUE(waitForResult(view, "frames[0].scrollY", "30"));
    plugin().WebView_scroll(view.handle(), 0, 100);
    EXPECT_EQ(evaluate("[scrollY, frames[0].scrollY]"), "100,30");
}

TEST_F(InputTest, FocusComesBackToTheFieldThatLostIt) {
    loadHtml(view, "<input id=first><input id=second>");
    evaluate("second.focus()");
    plugin().WebView_setFocused(view.handle(), 0);
    EXPECT_EQ(evaluate("document.activeElement.tagName"), "BODY");
    plugin().WebView_setFocused(view.handle(), 1);
    EXPECT_EQ(evaluate("document.activeElement.id"), "second");
}
