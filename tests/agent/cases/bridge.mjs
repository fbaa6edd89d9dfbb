import assert from "node:assert/strict";
import { test } from "node:test";
import { agentText, messages, openPage, run, startText } from "../support.mjs";

test("initialisation installs the agent once and needs its options", async (t) => {
    const page = await openPage(t, "", null);
    await run(page, agentText);
    assert.equal(await run(page, "window.zarvik === undefined && window._zarvikInternal === undefined"), true);
    await assert.rejects(run(page, "window.__initZarvik()"), /TypeError/);
    assert.equal(await run(page, "window.zarvik === undefined && window._zarvikInternal === undefined"), true);

    await run(page, `
        window.ready = [];
        addEventListener("zarvikready", () => ready.push(!!zarvik && !!_zarvikInternal.scrollManager))`);
    await run(page, startText());
    assert.deepEqual(await run(page, "Object.keys(_zarvikInternal)"), [
        "browserAgent",
        "focusManager",
        "keyboardInputManager",
        "pointerInputManager",
        "scrollManager",
        "selectElementManager",
        "setDefaultBackground",
    ]);

    await run(page, `
        window.installed = () => [zarvik, _zarvikInternal, ...Object.values(_zarvikInternal)];
        window.first = installed(); 0`);
    await messages(page);
    await run(page, "__initZarvik({ expectedDevicePixelRatio: 1 })");
    assert.equal(await run(page, "installed().every((value, index) => value === first[index])"), true);
    assert.deepEqual(await run(page, "ready"), [true]);
    assert.deepEqual(await messages(page), []);

    // The components of the refused installation still listen.
    const moves = await page.evaluate(async () => {
        let moves = 0;
        addEventListener("mousemove", () => moves++);
        const message = { type: "zarvik.webview.movePointer", x: 5, y: 5 };
        postMessage({ domain: "zarvik.iframeBridgeDownstream", message }, "*");
        await new Promise((resolve) => addEventListener("message", resolve, { once: true }));
        return moves;
    });
    assert.equal(moves, 2);
});

test("messages travel as text, and fail without the plug-in's object", async (t) => {
    const page = await openPage(t, "");
    await messages(page);
    await run(page, "zarvik.postMessage('abc'); zarvik.postMessage({ a: 1 }); zarvik.postMessage(null)");
    assert.deepEqual(await messages(page), ["abc", '{"a":1}', "null"]);
    await run(page, "delete window._zarvikBridge");
    await assert.rejects(run(page, "zarvik.postMessage('abc')"), /TypeError/);
});

test("event listeners are called in order, once, whatever the others do", async (t) => {
    const page = await openPage(t, "");
    const log = await page.evaluate(() => {
        const log = [];
        console.error = (...args) => log.push(`${args[0]} ${args[1].message}`);
        const first = (value) => log.push(`first ${value}`);
        const failing = () => {
            throw new Error("broken");
        };
        const last = (value) => {
            log.push(`last ${value}`);
            zarvik.removeEventListener("news", first);
        };
        for (const listener of [first, first, failing, last]) zarvik.addEventListener("news", listener);
        zarvik.removeEventListener("news", () => {});
        zarvik.removeEventListener("unknown", first);
        zarvik._emit("unheard", 0);
        zarvik._emit("news", 1);
        zarvik._emit("news", 2);
        return log;
    });
    assert.deepEqual(log, [
        "first 1",
        "An error occurred while invoking the 'news' event handler. broken",
        "last 1",
        "An error occurred while invoking the 'news' event handler. broken",
        "last 2",
    ]);
});

test("an answer resolves its request; without one it fails after a second", async (t) => {
    const page = await openPage(t, "");
    await messages(page);
    await page.evaluate(() => {
        window.outcomes = {};
        const keep = (name, promise) =>
            promise.then(
                (value) => (outcomes[name] = value),
                (error) => (outcomes[name] = `${error.name}: ${error.message}`),
            );
        window.request = { type: "x" };
        keep("answered", zarvik.postMessageWithResponse(request));
        const drawn = [0.25, 0.25, 0.5];
        const random = Math.random;
        Math.random = () => drawn.shift();
        keep("ownId", zarvik.postMessageWithResponse({ type: "y", responseId: "7" }));
        keep("late", zarvik.postMessageWithResponse({ type: "z" }));
        Math.random = random;
    });
    const [first, second, third] = (await messages(page)).map((message) => JSON.parse(message));
    assert.deepEqual(Object.keys(first), ["responseId", "type"]);
    assert.deepEqual(second, { responseId: "7", type: "y" });
    assert.equal(third.responseId, "0.5");

    await page.clock.runFor(999);
    await run(page, `zarvik._respondToEvent({ responseId: "${first.responseId}", value: "yes" })`);
    await run(page, `zarvik._respondToEvent({ responseId: "7", value: "unknown" })`);
    await run(page, `zarvik._respondToEvent({ responseId: "0.25", value: "mine" })`);
    assert.deepEqual(await run(page, "outcomes"), { answered: "yes", ownId: "mine" });
    await page.clock.runFor(1);
    await run(page, `zarvik._respondToEvent({ responseId: "0.5", value: "too late" })`);
    assert.deepEqual(await run(page, "outcomes"), {
        answered: "yes",
        ownId: "mine",
        late: "Error: The native module didn't respond to the event in time.",
    });
    assert.deepEqual(await run(page, "request"), { type: "x" });
});
