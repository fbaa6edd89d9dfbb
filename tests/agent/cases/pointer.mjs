import assert from "node:assert/strict";
import { test } from "node:test";
import { call, events, openPage, recordPointerEvents, run } from "../support.mjs";

/** Elements of 100 by 100 pixels, side by side. */
const boxes = (...elements) =>
    `<style>
        body { margin: 0; display: flex }
        body > * { width: 100px; height: 100px; padding: 0; margin: 0; border: 0 }
    </style>
    <body id=body>${elements.join("")}`;

const pointer = (method, ...args) => [`pointerInputManager.${method}`, ...args];

test("a click is a move, a press, a release and a click on the element at the point", async (t) => {
    const page = await openPage(t, boxes("<div id=a tabindex=0></div>", "<div id=b></div>"));
    await recordPointerEvents(page);
    await call(page, ...pointer("click", 50, 50));
    assert.deepEqual(await events(page), [
        "pointermove@a button=0 buttons=0 detail=0",
        "mousemove@a button=0 buttons=0 detail=0",
        "pointerover@a button=0 buttons=0 detail=0",
        "mouseover@a button=0 buttons=0 detail=0",
        "pointerdown@a button=0 buttons=1 detail=1",
        "mousedown@a button=0 buttons=1 detail=1",
        "pointerup@a button=0 buttons=0 detail=1",
        "mouseup@a button=0 buttons=0 detail=1",
        "click@a button=0 buttons=0 detail=1",
    ]);
    const last = await page.evaluate(() => {
        const { bubbles, cancelable, screenX, screenY, clientX, clientY } = lastEvent;
        const { pointerId, pointerType, isPrimary, constructor } = lastEvent;
        return {
            bubbles, cancelable, screenX, screenY, clientX, clientY,
            pointerId, pointerType, isPrimary, type: constructor.name,
        };
    });
    assert.deepEqual(last, {
        bubbles: true, cancelable: true, screenX: 50, screenY: 50, clientX: 50, clientY: 50,
        pointerId: 1, pointerType: "mouse", isPrimary: true, type: "PointerEvent",
    });
    assert.equal(await run(page, "document.activeElement.id"), "a");
    await call(page, ...pointer("click", 900, 50));
    assert.deepEqual(await events(page), []);
});

test("the buttons have their DOM numbers, and moves carry the one that is held", async (t) => {
    const page = await openPage(t, boxes("<div id=a></div>", "<div id=b></div>"));
    await recordPointerEvents(page);
    const pressed = [];
    for (const button of [3, 0, 1, 2]) {
        await call(page, ...pointer("pointerDown", 50, 50, button, 1));
        await call(page, ...pointer("movePointer", 51, 50));
        await call(page, ...pointer("pointerUp", 50, 50, button, 1));
        const seen = await events(page);
        const moves = seen.filter((line) => /mousemove/.test(line));
        pressed.push(seen.filter((line) => /mousedown|click/.test(line)), moves.slice(1));
    }
    const move = (buttons) => `mousemove@a ${buttons} detail=0`;
    const click = "click@a button=0 buttons=0 detail=1";
    assert.deepEqual(pressed, [
        ["mousedown@a button=0 buttons=0 detail=1", click], [move("button=0 buttons=0")],
        ["mousedown@a button=0 buttons=1 detail=1", click], [move("button=0 buttons=1")],
        ["mousedown@a button=2 buttons=2 detail=1", click], [move("button=2 buttons=2")],
        ["mousedown@a button=1 buttons=4 detail=1", click], [move("button=1 buttons=4")],
    ]);

    await call(page, ...pointer("movePointer", 150, 50));
    await call(page, ...pointer("movePointer", 160, 50));
    await call(page, ...pointer("movePointer", 160, 50, true));
    const released = (...events) => events.map((event) => `${event} button=0 buttons=0 detail=0`);
    assert.deepEqual(await events(page), [
        ...released("pointermove@b", "mousemove@b", "pointerover@b", "mouseover@b"),
        ...released("pointermove@b", "mousemove@b"),
        ...released("pointermove@a", "mousemove@a", "pointerover@a", "mouseover@a"),
    ]);
});

test("links and buttons get the events of what they contain, and their own click", async (t) => {
    const page = await openPage(t, boxes(
        "<a id=link href=#went><span id=span style='display:block;height:100px'></span></a>",
        "<button id=button><b id=bold>bold</b></button>",
        "<input id=box type=checkbox>",
        "<svg id=svg><a id=svgLink><rect id=rect width=100 height=100 /></a></svg>",
    ));
    await recordPointerEvents(page);
    const targets = async (x) => {
        await call(page, ...pointer("pointerDown", x, 50, 0, 2));
        await call(page, ...pointer("pointerUp", x, 50, 0, 2));
        const lines = (await events(page)).filter((line) => !/^(pointer|mouse)(over|move)/.test(line));
        return lines.map((line) => line.replace(/ button=.*detail/, " detail"));
    };
    const ownClick = (id) => [
        `pointerdown@${id} detail=2`, `mousedown@${id} detail=2`, `pointerup@${id} detail=2`, `mouseup@${id} detail=2`,
        `click@${id} detail=0`, `dblclick@${id} detail=2`,
    ];
    assert.deepEqual(await targets(50), ownClick("link"));
    assert.equal(await run(page, "location.hash"), "#went");
    assert.deepEqual(await targets(150), ownClick("button"));
    assert.equal(await run(page, "document.activeElement.id"), "button");
    assert.deepEqual(await targets(250), ownClick("box"));
    assert.equal(await run(page, "box.checked"), true);
    // A link inside a picture is no HTML element.
    const synthetic = ownClick("rect").map((line) => line.replace("click@rect detail=0", "click@rect detail=2"));
    assert.deepEqual(await targets(350), synthetic);
});

test("presses and releases are adjusted to the pixel ratio, moves are not", async (t) => {
    const html = boxes("<div id=a></div>", "<div id=b></div>", "<div id=c></div>");
    const page = await openPage(t, html, { expectedDevicePixelRatio: 1.5 });
    await recordPointerEvents(page);
    const at = async (method, ...args) => {
        await call(page, ...pointer(method, ...args));
        const position = await run(page, "`${lastEvent.clientX},${lastEvent.clientY}`");
        const targets = (await events(page)).map((line) => line.replace(/^\w+@| .*/g, ""));
        return [...new Set(targets), position];
    };
    assert.deepEqual(await at("pointerDown", 100, 40, 0, 1), ["b", "150,60"]);
    assert.deepEqual(await at("pointerUp", 100, 40, 0, 1), ["b", "150,60"]);
    assert.deepEqual(await at("movePointer", 99, 40), ["a", "99,40"]);
    assert.deepEqual(await at("click", 150, 40), ["c", "225,60"]);
    await run(page, "devicePixelRatio = 1.5");
    assert.deepEqual(await at("click", 150, 40), ["b", "150,40"]);
});
