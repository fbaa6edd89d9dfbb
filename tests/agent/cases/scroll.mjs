import assert from "node:assert/strict";
import { test } from "node:test";
import { call, openPage, run } from "../support.mjs";

const scrollBy = (page, deltaX, deltaY, x = 50, y = 50) =>
    call(page, "scrollManager.scrollAtPoint", deltaX, deltaY, x, y);

test("the nearest element that can still scroll that way scrolls, and at last the document", async (t) => {
    const page = await openPage(t, `
        <style>
            body { margin: 0; height: 5000px; width: 5000px }
            #outer { width: 400px; height: 400px; overflow: auto; scroll-behavior: smooth }
            #hidden { width: 1000px; height: 1000px; overflow: hidden }
            #inner { width: 200px; height: 200px; overflow-y: scroll; overflow-x: hidden }
            #content { width: 800px; height: 260px }
        </style>
        <div id=outer><div id=hidden><div id=inner><div id=content></div></div></div></div>`);
    const positions = () =>
        run(page, "[inner, outer, document.scrollingElement].map((each) => [each.scrollLeft, each.scrollTop])");

    await scrollBy(page, 0, 0);
    await scrollBy(page, 10, 40);
    // The stronger direction decides, the other one goes along.
    assert.deepEqual(await positions(), [[10, 40], [0, 0], [0, 0]]);
    await scrollBy(page, 0, 500);
    const [[, bottom]] = await positions();
    await scrollBy(page, 0, 100);
    assert.deepEqual(await positions(), [[10, bottom], [0, 100], [0, 0]]);
    assert.equal(await run(page, "outer.style.scrollBehavior"), "auto");
    await scrollBy(page, 0, -30);
    assert.deepEqual(await positions(), [[10, bottom - 30], [0, 100], [0, 0]]);
    // Hidden overflow does not count, and equal deltas go sideways.
    await scrollBy(page, 20, 20);
    assert.deepEqual(await positions(), [[10, bottom - 30], [20, 120], [0, 0]]);
    await run(page, "outer.scrollTo(0, 0); inner.scrollTop = 0");
    await scrollBy(page, 0, 70, 700, 500);
    assert.deepEqual(await positions(), [[10, 0], [0, 0], [0, 70]]);
    await scrollBy(page, 0, -20, 50, 50);
    assert.deepEqual(await positions(), [[10, 0], [0, 0], [0, 50]]);
    // Outside of the window there is no element, so it is the document.
    await scrollBy(page, 5, 0, -1, -1);
    assert.deepEqual(await positions(), [[10, 0], [0, 0], [5, 50]]);

    await run(page, `
        const overlay = document.createElement("zarvik-dropdown-container");
        overlay.style = "position: fixed; inset: 0";
        document.body.append(overlay)`);
    await scrollBy(page, 0, 50);
    assert.deepEqual(await positions(), [[10, 0], [0, 0], [5, 50]]);
});

test("scroll positions are not adjusted, and a scrolling body takes the document along", async (t) => {
    const page = await openPage(t, `
        <style>
            html { overflow: scroll; height: 3000px }
            body { margin: 0; height: 300px; overflow: auto }
            #tall { height: 900px }
        </style>
        <div id=tall></div>`, { expectedDevicePixelRatio: 2 });
    await scrollBy(page, 0, 30);
    assert.deepEqual(await run(page, "[document.body.scrollTop, document.documentElement.scrollTop]"), [30, 30]);
});
