import assert from "node:assert/strict";
import { test } from "node:test";
import { escapeForFrames } from "../../../src/agent/build/checks.mjs";
import { agentText, call, events, messages, openPage, origin } from "../support.mjs";
import { recordPointerEvents, run, startText, until } from "../support.mjs";

const frameAt = (page, path) => page.frames().find((frame) => frame.url() === origin + path);
const page = (frameBody) => ({
    "/": `
        <style>
            body { margin: 0; height: 3000px }
            iframe { position: absolute; left: 100px; top: 50px; width: 200px; height: 200px; border: 0 }
        </style>
        <body id=top><iframe id=frame src=/frame></iframe>`,
    "/frame": `<style>body { margin: 0 }</style><html id=root><body>${frameBody}`,
});

const starterText =
    "document.querySelectorAll('iframe[data-zarvik-target]').forEach(iframe => { " +
    "iframe.removeAttribute('data-zarvik-target');iframe.contentWindow.eval('" +
    escapeForFrames(agentText) +
    ";window.__initZarvik();');});";

test("the frame starter brings the text into a marked frame, where a start without options fails", async (t) => {
    const top = await openPage(t, page(""));
    await run(top, "document.querySelector('iframe').setAttribute('data-zarvik-target', true)");
    await assert.rejects(run(top, starterText), /TypeError.*expectedDevicePixelRatio/s);
    assert.equal(await run(top, "frame.hasAttribute('data-zarvik-target')"), false);
    const globals = "[typeof __initZarvik, typeof zarvik, typeof _zarvikInternal, System === parent.System]";
    const state = await run(frameAt(top, "/frame"), globals);
    assert.deepEqual(state, ["function", "undefined", "undefined", false]);
    // Without a mark there is nothing to do.
    await run(top, starterText);
});

test("an agent in a frame sends nothing, but the page's script there may", async (t) => {
    const top = await openPage(t, page("<title>F</title><input id=field autofocus>"));
    await messages(top);
    const frame = frameAt(top, "/frame");
    await run(frame, "window._zarvikBridge = parent._zarvikBridge");
    await run(frame, startText({ enableConsoleMessageEvents: true, enableFocusedInputFieldEvents: true }));
    await run(frame, "field.focus(); console.log('x'); history.pushState(null, '', '#x')");
    await top.clock.runFor(400);
    assert.deepEqual(await messages(top), []);
    assert.equal(await run(frame, "_zarvikInternal.browserAgent._focusedInputField === field"), true);
    await run(frame, "zarvik.postMessage('from the frame')");
    assert.deepEqual(await messages(top), ["from the frame"]);
});

test("pointer input and keys over a frame go to the agent inside", async (t) => {
    const field = "<input id=field style='position: absolute; left: 20px; top: 30px; width: 100px'>";
    const top = await openPage(t, page(field), { expectedDevicePixelRatio: 2 });
    const frame = frameAt(top, "/frame");
    await run(frame, startText());
    await recordPointerEvents(top);
    await recordPointerEvents(frame);
    await call(top, "pointerInputManager.movePointer", 101, 51);
    await call(top, "pointerInputManager.pointerDown", 65, 45, 1, 1);
    await call(top, "pointerInputManager.pointerUp", 65, 45, 1, 2);
    await until(frame, "seen.some((line) => line.startsWith('dblclick'))");
    assert.equal(await run(frame, "`${lastEvent.clientX},${lastEvent.clientY}`"), "30,40");
    assert.deepEqual((await events(frame)).filter((line) => /mouse|click/.test(line)), [
        "mousemove@root button=0 buttons=0 detail=0",
        "mouseover@root button=0 buttons=0 detail=0",
        "mousemove@field button=0 buttons=0 detail=0",
        "mouseover@field button=0 buttons=0 detail=0",
        "mousedown@field button=2 buttons=2 detail=1",
        "mouseup@field button=0 buttons=0 detail=2",
        "click@field button=0 buttons=0 detail=0",
        "dblclick@field button=0 buttons=0 detail=2",
    ]);
    assert.deepEqual(await events(top), []);

    await call(top, "keyboardInputManager.sendKey", "k");
    assert.equal(await until(frame, "field.value"), "k");

    // A press outside that is released over the frame stays held here.
    await call(top, "pointerInputManager.pointerDown", 10, 10, 2, 1);
    await call(top, "pointerInputManager.pointerUp", 65, 45, 2, 1);
    await events(top);
    await call(top, "pointerInputManager.movePointer", 20, 20);
    assert.equal((await events(top))[0], "pointermove@top button=1 buttons=4 detail=0");
});

test("a scroll goes down into a frame, and up again when its document cannot take it", async (t) => {
    const top = await openPage(t, page("<style>html { overflow-y: scroll }</style><div style='height: 260px'></div>"));
    const frame = frameAt(top, "/frame");
    await run(frame, startText());
    const tops = () => Promise.all([run(top, "scrollY"), run(frame, "scrollY")]);
    await call(top, "scrollManager.scrollAtPoint", 0, 60, 150, 150);
    await until(frame, "scrollY");
    assert.deepEqual(await tops(), [0, 60]);
    await call(top, "scrollManager.scrollAtPoint", 0, 40, 150, 150);
    await until(top, "scrollY");
    assert.deepEqual(await tops(), [40, 60]);

    // From a window that is no frame of ours it is ignored; messages of others are, too.
    await run(top, "window.errors = 0; addEventListener('error', () => errors++)");
    await top.evaluate(async () => {
        const type = "zarvik.webview.iframeUnscrollable";
        const message = { type, deltaX: 0, deltaY: 500, pointerX: 1, pointerY: 1 };
        for (const data of [{ domain: "zarvik.iframeBridgeUpstream", message }, "", { other: 1 }, "last"])
            postMessage(data, "*");
        await new Promise((resolve) => addEventListener("message", ({ data }) => data === "last" && resolve()));
    });
    assert.deepEqual(await run(top, "[scrollY, errors]"), [40, 0]);
});
