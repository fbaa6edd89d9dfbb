import assert from "node:assert/strict";
import { test } from "node:test";
import { call, openPage, run } from "../support.mjs";

const sendKey = (page, key) => call(page, "keyboardInputManager.sendKey", key);

/** Keeps lines of the key and input events in the page, for `seen`. */
const recordKeys = (page) =>
    page.evaluate(() => {
        window.lines = [];
        const describe = {
            KeyboardEvent: ({ key, keyCode }) => ` ${JSON.stringify(key)} ${keyCode}`,
            TextEvent: (event) => {
                window.textEvent = event;
                return ` ${JSON.stringify(event.data)} ${event.defaultPrevented}`;
            },
        };
        const record = (event) => {
            const details = describe[event.constructor.name]?.(event) ?? "";
            lines.push(`${event.type}@${event.target.id}${details}`);
        };
        for (const type of ["keydown", "keypress", "textInput", "keyup", "input", "submit"])
            addEventListener(type, record, true);
    });

const seen = (page) => run(page, "lines.splice(0)");

const keyLines = (id, key, code) => [
    `keydown@${id} ${key} ${code}`,
    `keypress@${id} ${key} ${code}`,
    `textInput@${id} ${key} false`,
    `keyup@${id} ${key} ${code}`,
];

/** Sets text and selection, sends the key, and returns text and selection in the form "a[b]c" or "a|c". */
async function edit(page, id, text, start, end, key) {
    await run(page, `${id}.value = ${JSON.stringify(text)}; ${id}.focus(); ${id}.setSelectionRange(${start}, ${end})`);
    await sendKey(page, key);
    const [value, from, to] = await run(page, `[${id}.value, ${id}.selectionStart, ${id}.selectionEnd]`);
    return value.slice(0, from) + (from === to ? "|" : `[${value.slice(from, to)}]`) + value.slice(to);
}

test("a character goes into the focused field at the caret, after its key events", async (t) => {
    const page = await openPage(t, "<input id=field><textarea id=area></textarea>");
    await recordKeys(page);
    assert.equal(await edit(page, "field", "xy", 1, 1, "a"), "xa|y");
    assert.deepEqual(await seen(page), [...keyLines("field", '"a"', 97), "input@field"]);
    // An engine that inserts the text of such an event itself would double it.
    assert.equal(await run(page, "textEvent.defaultPrevented && textEvent.cancelable && textEvent.bubbles"), true);

    assert.equal(await edit(page, "field", "abcd", 1, 3, "X"), "aX|d");
    assert.equal(await edit(page, "area", "xy", 1, 1, "Enter"), "x\n|y");
    assert.equal(await edit(page, "area", "xy", 1, 1, "\n"), "x\n|y");
    await seen(page);
    assert.equal(await edit(page, "field", "xy", 1, 1, "\u{1F600}"), "x\ud83d|\ude00y");
    assert.deepEqual(await seen(page), [...keyLines("field", '"\u{1F600}"', 0xd83d), "input@field"]);
    assert.equal(await edit(page, "field", "xy", 1, 1, "ab"), "x|y");
    assert.deepEqual(await seen(page), []);
});

test("backspace and the arrows move through the text", async (t) => {
    const page = await openPage(t, "<input id=field>");
    await recordKeys(page);
    const results = [];
    for (const [start, end, key] of [
        [0, 0, "Backspace"], [2, 2, "\b"], [1, 3, "Backspace"],
        [0, 0, "ArrowLeft"], [2, 2, "ArrowLeft"], [1, 3, "ArrowLeft"],
        [4, 4, "ArrowRight"], [2, 2, "ArrowRight"], [1, 3, "ArrowRight"],
    ])
        results.push(await edit(page, "field", "abcd", start, end, key));
    assert.deepEqual(results, [
        "|abcd", "a|cd", "a|d",
        "|abcd", "a|bcd", "a|bcd",
        "abcd|", "abc|d", "abc|d",
    ]);
    const lines = await seen(page);
    assert.deepEqual(lines.slice(0, 5), [...keyLines("field", '"\\b"', 8), 'keydown@field "\\b" 8']);
    assert.deepEqual(lines.slice(-4), keyLines("field", '"ArrowRight"', 65));
    assert.equal(lines.filter((line) => line === "input@field").length, 2);
});

test("editable elements take text like fields", async (t) => {
    const page = await openPage(t, "<div id=editable contenteditable>xy</div><div id=plain tabindex=0>xy</div>");
    await recordKeys(page);
    const state = () => run(page, "[editable.innerText, getSelection().anchorOffset, getSelection().isCollapsed]");
    await run(page, "editable.focus(); getSelection().collapse(editable.firstChild, 1)");
    await sendKey(page, "a");
    assert.deepEqual(await state(), ["xay", 2, true]);
    assert.deepEqual(await seen(page), [...keyLines("editable", '"a"', 97), "input@editable"]);
    await run(page, "getSelection().setBaseAndExtent(editable.firstChild, 0, editable.firstChild, 2)");
    await sendKey(page, "ArrowRight");
    assert.deepEqual(await state(), ["xay", 2, true]);
    for (const key of ["Backspace", "ArrowRight", "Backspace", "Backspace"]) await sendKey(page, key);
    assert.deepEqual((await state()).slice(0, 1), [""]);

    await seen(page);
    await run(page, "plain.focus()");
    await sendKey(page, "a");
    assert.deepEqual(await seen(page), keyLines("plain", '"a"', 97));
    assert.equal(await run(page, "plain.innerText"), "xy");
});

test("typing bypasses a page's own value property and its cancelled key events", async (t) => {
    const page = await openPage(t, "<input id=field><input id=next>");
    await page.evaluate(() => {
        window.writes = 0;
        const { get, set } = Object.getOwnPropertyDescriptor(HTMLInputElement.prototype, "value");
        const countingSet = (value) => (writes++, set.call(field, value));
        Object.defineProperty(field, "value", { get, set: countingSet });
        for (const type of ["keydown", "keypress", "textInput"])
            field.addEventListener(type, (event) => event.preventDefault());
        field.focus();
    });
    await sendKey(page, "a");
    assert.deepEqual(await run(page, "[field.value, writes]"), ["a", 0]);
});

test("enter in an input submits its form, unless a listener cancels that", async (t) => {
    const page = await openPage(t, "<form id=form><p><input id=inside></p></form><input id=outside value=xy>");
    await recordKeys(page);
    await run(page, `
        window.submits = 0;
        form.submit = () => submits++;
        document.addEventListener("submit", () => lines.push("bubbled"));
        inside.focus()`);
    await sendKey(page, "\n");
    assert.deepEqual(await seen(page), ["submit@form"]);
    assert.equal(await run(page, "submits"), 1);
    await run(page, "form.onsubmit = () => false");
    await sendKey(page, "Enter");
    assert.deepEqual(await seen(page), ["submit@form"]);
    assert.equal(await run(page, "submits"), 1);
    assert.equal(await edit(page, "outside", "xy", 1, 1, "Enter"), "x|y");
    assert.deepEqual(await seen(page), keyLines("outside", '"\\r"', 13));
});

test("with nothing editable in focus the arrows scroll the window", async (t) => {
    const page = await openPage(t, "<body id=body style='width: 3000px; height: 3000px'>");
    await recordKeys(page);
    const position = async (key) => {
        await sendKey(page, key);
        return run(page, "[scrollX, scrollY]");
    };
    assert.deepEqual(await position("ArrowDown"), [0, 50]);
    assert.deepEqual(await position("ArrowRight"), [50, 50]);
    assert.deepEqual(await position("Tab"), [50, 50]);
    assert.deepEqual(await position("ArrowUp"), [50, 0]);
    assert.deepEqual(await position("ArrowLeft"), [0, 0]);
    assert.deepEqual(await seen(page), []);
    await sendKey(page, "a");
    assert.deepEqual(await seen(page), keyLines("body", '"a"', 97));
});
