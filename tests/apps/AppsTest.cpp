// Applications that others wrote, used through forwarded input as by a user.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

#include "support/EngineTest.h"

namespace {

constexpr std::int32_t leftButton = 0;

class AppsTest : public EngineTest {
  protected:
    struct Point {
        int x = 0;
        int y = 0;
    };
    using Colour = std::array<int, 3>;  // red, green, blue
    static constexpr Colour black{0, 0, 0};
    static constexpr Colour red{255, 0, 0};
    static constexpr Colour white{255, 255, 255};

    /// Opens a page of the folder `pages` and waits until it has made its object `app`.
    void open(const std::string& name) {
        const auto part = [&](const char* type) {
            std::ifstream file(APP_FOLDER "/" + name + type, std::ios::binary);
            return std::string(std::istreambuf_iterator(file), {});
        };
        const std::string head = R"(<meta charset=utf-8><script>
            var failures = [];
            addEventListener('error', (event) => failures.push(event.message));
            addEventListener('unhandledrejection', (event) => failures.push(`${event.reason}`));
        </script>)";
        server.page("/" + name, head + "<style>body { margin: 0 }" + part(".css") +
                                    "</style><div id=page></div><script type=module>" + part(".js") +
                                    "</script>");
        load(view, server.url("/" + name));
        ASSERT_TRUE(waitFor("typeof window.app", "object")) << evaluate("failures.join()");
    }

    /// The application must not have stumbled over what it was sent.
    void TearDown() override { EXPECT_EQ(evaluate("JSON.stringify(failures)"), "[]"); }

    std::string evaluate(const std::string& script) { return view.evaluate(script).value_or("no answer"); }

    testing::AssertionResult waitFor(const std::string& script, const std::string& expected) {
        const bool holds = waitForResult(view, script, expected);
        return (holds ? testing::AssertionSuccess() : testing::AssertionFailure())
               << script << " is '" << evaluate(script) << "', not '" << expected << "'";
    }

    /// A point as a script gives it: two numbers with a blank between them.
    Point point(const std::string& script) {
        const auto text = evaluate(script);
        Point result;
        EXPECT_TRUE(std::istringstream(text) >> result.x >> result.y) << script << " is '" << text << "'";
        return result;
    }

    /// A point of an element, once that shows, from expressions of its left, top, right and bottom.
    Point pointOf(const std::string& selector, const std::string& x, const std::string& y) {
        const auto element = "document.querySelector(`" + selector + "`)";
        EXPECT_TRUE(waitFor(element + "?.checkVisibility({ visibilityProperty: true })", "true"));
        return point("(({ left, top, right, bottom }) => Math.round(" + x + ") + ' ' + Math.round(" + y +
                     "))(" + element + ".getBoundingClientRect())");
    }
    Point middleOf(const std::string& selector) {
        return pointOf(selector, "(left + right) / 2", "(top + bottom) / 2");
    }
    /// Where the text of an element leaves its background free.
    Point cornerOf(const std::string& selector) { return pointOf(selector, "left + 3", "top + 3"); }

    void click(Point at, int count = 1) {
        for (int i = 1; i <= count; ++i) {
            plugin().WebView_pointerDown(view.handle(), at.x, at.y, leftButton, i);
            plugin().WebView_pointerUp(view.handle(), at.x, at.y, leftButton, i);
        }
    }
    void clickOn(const std::string& selector) { click(middleOf(selector)); }

    void drag(Point from, Point to) {
        constexpr int steps = 8;
        plugin().WebView_pointerDown(view.handle(), from.x, from.y, leftButton, 1);
        for (int i = 1; i <= steps; ++i) {
            hover({from.x + (to.x - from.x) * i / steps, from.y + (to.y - from.y) * i / steps});
        }
        plugin().WebView_pointerUp(view.handle(), to.x, to.y, leftButton, 1);
    }

    void hover(Point at) { plugin().WebView_movePointer(view.handle(), at.x, at.y, 0); }

    void type(const std::string& text) {
        for (const char character : text) {
            press({&character, 1});
        }
    }
    void press(const std::string& key) { plugin().WebView_sendKey(view.handle(), key.c_str()); }

    /// Chooses from a select element, whose list the page draws itself.
    void choose(const std::string& selector, const std::string& option) {
        ASSERT_TRUE(waitFor("document.querySelector('" + selector + "').getAttributeNS('zarvik', 'managed')",
                            "true"));
        clickOn(selector);
        const std::string entries = "Array.from(document.querySelectorAll('zarvik-dropdown-option'))";
        ASSERT_TRUE(waitFor(entries + ".some((entry) => entry.innerText === '" + option + "')", "true"));
        // The engine sees the list, with the entry that is chosen so far.
        ASSERT_TRUE(waitForColour(cornerOf("zarvik-dropdown-option[selected]"), {0x12, 0x75, 0xff}));
        evaluate(entries + ".find((entry) => entry.innerText === '" + option + "').id = 'wanted'");
        clickOn("#wanted");
        ASSERT_TRUE(waitFor("document.querySelector('zarvik-dropdown-container')", "null"));
    }

    /// Waits until the engine's texture has a colour at a point, but for what a blend may lose.
    testing::AssertionResult waitForColour(Point at, Colour expected) {
        Colour found{};
        const bool shows = waitForPixels(view, [&](const Image& image) {
            const auto pixel = image.at(at.x, at.y);
            found = {pixel[2], pixel[1], pixel[0]};
            return std::ranges::equal(found, expected, [](int a, int b) { return std::abs(a - b) <= 3; });
        });
        return (shows ? testing::AssertionSuccess() : testing::AssertionFailure())
               << "at " << at.x << ", " << at.y << " is " << testing::PrintToString(found);
    }

    View view{engine, {800, 600}};
};

}  // namespace

TEST_F(AppsTest, ACodeEditorIsWrittenInSelectsAndScrolls) {
    open("codeEditor");
    click(point("app.pointOf(1, 13)"));  // behind the number
    type(" + x");
    ASSERT_TRUE(waitFor("app.line(1)", "    return 41 + x;"));
    press("Backspace");
    type("17");
    ASSERT_TRUE(waitFor("app.line(1)", "    return 41 + 17;"));
    EXPECT_EQ(evaluate("app.highlighted('number')"), "41,17");
    press("Enter");
    type("// two lines");
    ASSERT_TRUE(waitFor("app.line(2).trim()", "// two lines;"));
    EXPECT_EQ(evaluate("app.line(1)"), "    return 41 + 17");
    EXPECT_EQ(evaluate("app.lineCount()"), "501");

    click(point("app.pointOf(0, 12)"), 2);
    ASSERT_TRUE(waitFor("app.selection()", "answer"));
    type("q");
    ASSERT_TRUE(waitFor("app.line(0)", "function q() {"));

    drag(point("app.pointOf(1, 4)"), point("app.pointOf(1, 11)"));
    ASSERT_TRUE(waitFor("app.selection()", "return "));
    const auto blank = point("app.pointOf(1, 10)");
    ASSERT_TRUE(waitForColour({blank.x + 3, blank.y}, {0xd7, 0xd4, 0xf0}));
    press("Backspace");
    ASSERT_TRUE(waitFor("app.line(1)", "    41 + 17"));

    plugin().WebView_scrollAtPoint(view.handle(), 0, 4000, 300, 150);
    EXPECT_EQ(evaluate("app.scrollTop()"), "4000");
    // Only what shows is in the page: the lines there have only now come into being.
    ASSERT_TRUE(
        waitFor("app.lineAt(150) === document.elementFromPoint(100, 150).closest('pre')?.innerText", "true"));
    EXPECT_EQ(evaluate("app.lineAt(150)").substr(0, 8), "// line ");
}

TEST_F(AppsTest, ARichTextEditorTakesTextAndNewBlocks) {
    open("richTextEditor");
    clickOn(".ce-paragraph");
    type("twenty-");
    press("ArrowRight");
    press("Backspace");
    type("O");
    ASSERT_TRUE(waitFor("app.blocks()", "header: Title; paragraph: twenty-One"));

    // A block's button shows once the pointer comes to the block, and adds one after it.
    hover(middleOf(".ce-header"));
    clickOn(".ce-toolbar__plus");
    clickOn(".ce-popover-item[data-item-name=header]");
    ASSERT_TRUE(waitFor("document.activeElement === document.querySelectorAll('.ce-header')[1]", "true"));
    const auto atText = pointOf(".ce-block:nth-child(2) .ce-header", "left + 5", "(top + bottom) / 2");
    ASSERT_TRUE(waitForColour(atText, white));
    press("█");
    type("More");
    ASSERT_TRUE(waitFor("app.blocks()", "header: Title; header: █More; paragraph: twenty-One"));
    ASSERT_TRUE(waitForColour(atText, black));
}

TEST_F(AppsTest, AMapFollowsTheDragAndZooms) {
    open("map");
    ASSERT_TRUE(waitForColour({300, 200}, red));
    drag({300, 200}, {140, 280});
    EXPECT_EQ(evaluate("app.centre()"), "160 -80");
    // The red square follows: its middle was in the middle of the map.
    ASSERT_TRUE(waitForColour({140, 280}, red));
    ASSERT_TRUE(waitForColour({300, 200}, white));

    click(point("app.islandPoint()"));
    ASSERT_TRUE(waitFor("app.popup()", "An island"));
    clickOn(".leaflet-popup-close-button");
    ASSERT_TRUE(waitFor("app.popup()", "none"));
    click({500, 350}, 2);
    ASSERT_TRUE(waitFor("app.zoom()", "4"));
    clickOn(".leaflet-control-zoom-out");
    clickOn(".leaflet-control-zoom-out");
    ASSERT_TRUE(waitFor("app.zoom()", "2"));
}

TEST_F(AppsTest, ASlidersHandlesAreDragged) {
    constexpr Colour between{63, 184, 175};
    constexpr Colour outside{250, 250, 250};
    open("slider");
    const auto atThirtyFive = pointOf(".noUi-base", "left + (right - left) * 0.35", "(top + bottom) / 2");
    ASSERT_TRUE(waitForColour(atThirtyFive, between));
    const auto lower = middleOf(".noUi-handle-lower");
    drag(lower, {lower.x + 120, lower.y + 60});
    EXPECT_EQ(evaluate("app.values()"), "50,80");
    EXPECT_EQ(evaluate("app.happened()"), "start,end");
    ASSERT_TRUE(waitForColour(atThirtyFive, outside));
    // It cannot pass the other handle, and no longer follows once it is let go.
    drag(middleOf(".noUi-handle-upper"), lower);
    hover({600, lower.y});
    EXPECT_EQ(evaluate("app.values()"), "50,50");
}

TEST_F(AppsTest, AVirtualListShowsTheRowsThatAreScrolledTo) {
    open("virtualList");
    ASSERT_TRUE(waitFor("document.querySelector('.row')?.innerText", "Row 0"));
    plugin().WebView_scrollAtPoint(view.handle(), 0, 30 * 7000, 100, 150);
    plugin().WebView_scrollAtPoint(view.handle(), 0, -30 * 2000, 100, 150);
    ASSERT_TRUE(waitFor("document.elementFromPoint(100, 15).innerText", "Row 5000"));
    EXPECT_LT(std::stoi(evaluate("app.rowCount()")), 50);
    click({400, 75});
    ASSERT_TRUE(waitFor("app.chosen()", "5002"));
    ASSERT_TRUE(waitForColour({400, 75}, red));
    ASSERT_TRUE(waitForColour({400, 45}, white));
}

TEST_F(AppsTest, AFormOfControlledFieldsIsFilledInAndSent) {
    open("reactForm");
    clickOn("#name");
    type("Adda");
    press("Backspace");
    press("ArrowLeft");
    press("ArrowLeft");
    type("l-");
    press("Backspace");
    ASSERT_TRUE(waitFor("app.field('name')", "Aldd"));
    EXPECT_EQ(evaluate("[document.activeElement.value, document.activeElement.selectionStart]"), "Aldd,2");

    // The component alone decides what its fields hold.
    clickOn("#code");
    type("1a2b3456");
    ASSERT_TRUE(waitFor("app.field('code') + ' ' + document.activeElement.value", "1234 1234"));
    clickOn("#fixed");
    type("x");
    EXPECT_EQ(evaluate("document.activeElement.id + ' ' + document.activeElement.value"), "fixed as it is");
    clickOn("#note");
    type("a");
    press("Enter");
    type("b");
    ASSERT_TRUE(waitFor("app.field('note')", "a\nb"));
    choose("#fruit", "Cherry");
    ASSERT_TRUE(waitFor("app.field('fruit')", "cherry"));

    clickOn("#send");
    EXPECT_EQ(evaluate("app.sent()"), "nothing");  // disabled
    clickOn("#agreed");
    ASSERT_TRUE(waitFor("app.field('agreed')", "true"));
    clickOn("#send");
    ASSERT_TRUE(waitFor("app.sent()", "Aldd; 1234; a\nb; cherry; true"));
}

TEST_F(AppsTest, AFormIsSentWithEnter) {
    open("vueForm");
    clickOn("#search");
    type("plums ");
    ASSERT_TRUE(waitFor("app.search()", "plums"));
    choose("#fruit", "Banana");
    clickOn("#more");
    ASSERT_TRUE(waitFor("document.querySelector('#more').innerText", "2"));
    clickOn("#search");
    press("Enter");
    ASSERT_TRUE(waitFor("document.querySelector('#found').innerText", "2 banana plums"));
}

TEST_F(AppsTest, AMenuOpensUnderThePointer) {
    constexpr Colour active{0, 127, 255};
    open("menu");
    hover(middleOf("#open"));
    ASSERT_TRUE(waitFor("app.active()", "Open"));
    EXPECT_EQ(evaluate("app.isOpen()"), "false");
    hover(middleOf("#recent > div"));
    ASSERT_TRUE(waitFor("app.isOpen()", "true"));
    ASSERT_TRUE(waitForColour(cornerOf("#recent > div"), active));
    hover(middleOf("#second"));
    ASSERT_TRUE(waitForColour(cornerOf("#second > div"), active));
    clickOn("#second");
    ASSERT_TRUE(waitFor("app.chosen()", "second"));
    ASSERT_TRUE(waitFor("app.isOpen()", "false"));
    hover(middleOf("#close"));
    ASSERT_TRUE(waitFor("app.active()", "Close"));
    ASSERT_TRUE(waitForColour(cornerOf("#close > div"), active));
}

TEST_F(AppsTest, ADrawingShowsTheStrokesOfThePointer) {
    open("drawing");
    drag({20, 20}, {260, 20});
    hover({150, 70});
    drag({50, 100}, {250, 140});
    EXPECT_EQ(evaluate("app.strokes()"), "2");
    EXPECT_EQ(evaluate("app.stroke(0)"), "20 20 to 260 20");
    EXPECT_EQ(evaluate("app.stroke(1)"), "50 100 to 250 140");
    ASSERT_TRUE(waitForColour({140, 20}, black));
    ASSERT_TRUE(waitForColour({150, 120}, black));
    ASSERT_TRUE(waitForColour({150, 70}, white));
    ASSERT_TRUE(waitForColour({280, 20}, white));
}
