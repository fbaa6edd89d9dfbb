import assert from "node:assert/strict";
import { test } from "node:test";
import { call, openPage, origin, run, startText, until } from "../support.mjs";

test("the focus comes back to the element that lost it last", async (t) => {
    const page = await openPage(t, "<body id=body><input id=a><input id=b>");
    const active = () => run(page, "document.activeElement.id");
    const setFocused = (focused) => call(page, "focusManager.setFocused", focused);
    await run(page, "b.focus()");
    await setFocused(false);
    assert.equal(await active(), "body");
    await setFocused(true);
    assert.equal(await active(), "b");
    await run(page, "a.focus()");
    await setFocused(true);
    assert.equal(await active(), "a");
    await setFocused(false);
    await setFocused(false);
    await setFocused(true);
    assert.equal(await active(), "body");
});

const manyOptions = Array.from({ length: 30 }, (_, index) => `<option value=${index}>${index}</option>`).join("");

/** Clicks the element and returns once its list is there. */
async function openList(page, id) {
    await run(page, `${id}.click()`);
    await page.clock.runFor(9);
    assert.equal(await run(page, `${id}.style.display`), "none");
    assert.equal(await run(page, "document.querySelector('zarvik-dropdown-container')"), null);
    await page.clock.runFor(1);
    await until(page, "document.querySelector('zarvik-dropdown-container')?.lastElementChild.children.length > 0");
}

test("a select element opens a list in the page and takes the choice", async (t) => {
    const page = await openPage(t, `
        <style>
            body { margin: 0; font: italic bold 17px serif }
            select { position: absolute; left: 40px; top: 20px; width: 150px; height: 30px; font: inherit }
        </style>
        <select id=one style="display: block">
            <option>A</option>
            <optgroup><option value=b selected>B &amp; b</option></optgroup>
            <option disabled>C</option>
        </select>
        <select id=many multiple><option>x</option></select><select id=off disabled><option>x</option></select>`);
    await page.clock.runFor(250);
    const managed = await run(page, "[one, many, off].map((element) => element.getAttributeNS('zarvik', 'managed'))");
    assert.deepEqual(managed, ["true", null, null]);
    await run(page, "many.click()");
    await page.clock.runFor(10);
    assert.equal(await run(page, "document.querySelector('zarvik-dropdown-container')"), null);

    await run(page, "one.focus()");
    await openList(page, "one");
    assert.equal(await run(page, "one.style.display"), "block");
    const list = await page.evaluate(() => {
        const { left, top, width } = document.querySelector("zarvik-dropdown").style;
        const [first, ...rest] = document.querySelectorAll("zarvik-dropdown-option");
        const { fontSize, fontWeight, fontStyle, paddingLeft } = getComputedStyle(first);
        const entries = [first, ...rest].map((entry) => [entry.innerText, entry.getAttribute("selected")]);
        return { left, top, width, entries, fontSize, fontWeight, fontStyle, paddingLeft };
    });
    assert.deepEqual(list, {
        left: "40px", top: "50px", width: "150px",
        entries: [["A", null], ["B & b", "true"], ["C", null]],
        fontSize: "17px", fontWeight: "700", fontStyle: "italic", paddingLeft: "10px",
    });
    assert.deepEqual(
        await page.evaluate(() => {
            const outside = new Event("wheel", { cancelable: true, bubbles: true });
            document.querySelector("zarvik-dropdown-container").dispatchEvent(outside);
            const inside = new Event("wheel", { cancelable: true, bubbles: true });
            document.querySelector("zarvik-dropdown-option").dispatchEvent(inside);
            document.querySelector("zarvik-dropdown").dispatchEvent(new Event("mousemove"));
            const marked = document.querySelectorAll("zarvik-dropdown-option[selected]").length;
            return [outside.defaultPrevented, inside.defaultPrevented, marked];
        }),
        [true, false, 0],
    );

    await run(page, `
        window.changes = [];
        const isOpen = () => !!document.querySelector("zarvik-dropdown-container");
        const record = ({ type, target }) => changes.push([type, target.id, one.value, isOpen()]);
        for (const type of ["input", "change"]) document.addEventListener(type, record);
        document.querySelector("zarvik-dropdown-option").click()`);
    assert.deepEqual(await run(page, "changes"), [["input", "one", "A", true], ["change", "one", "A", false]]);
    assert.equal(await run(page, "document.querySelector('zarvik-dropdown-container')"), null);
    assert.equal(await run(page, "document.activeElement === document.body"), true);
});

test("a click beside the list closes it; press and release do not reach the page", async (t) => {
    const page = await openPage(t, "<body></body>");
    await run(page, `document.body.innerHTML = '<select id=late>${manyOptions}</select>'; late.value = 29`);
    await page.clock.runFor(250);
    await openList(page, "late");
    const [bottom, offsetTop, height] = await page.evaluate(() => {
        const list = document.querySelector("zarvik-dropdown");
        return [list.scrollTop + list.clientHeight, list.lastElementChild.offsetTop, list.clientHeight];
    });
    assert.ok(offsetTop > 300 && bottom > offsetTop && height <= 300, `${bottom} ${offsetTop} ${height}`);

    await run(page, `
        window.presses = 0;
        for (const type of ["mousedown", "mouseup"]) addEventListener(type, () => presses++)`);
    await call(page, "pointerInputManager.click", 700, 500);
    const container = "document.querySelector('zarvik-dropdown-container')";
    assert.deepEqual(await run(page, `[presses, ${container}, late.value]`), [0, null, "29"]);

    // Without a current option the long list opens all the same.
    await run(page, `
        window.failures = [];
        addEventListener("unhandledrejection", (event) => failures.push(event.reason.name));
        late.selectedIndex = -1`);
    await openList(page, "late");
    assert.equal(await run(page, "document.querySelectorAll('zarvik-dropdown-option').length"), 30);
    assert.deepEqual(await until(page, "failures.length && failures"), ["TypeError"]);
});

test("a page without a background gets a white layer behind it", async (t) => {
    const cases = [
        ["", 1],
        ["<style>body { background-color: transparent }</style>", 1],
        ["<style>body { background-color: rgb(1, 2, 3) }</style>", 0],
        ["<style>html { background-color: rgba(0, 0, 0, .5) }</style>", 0],
        ["<style>body { background-image: linear-gradient(red, blue) }</style>", 0],
        ["<style>html { background-image: url(x.png) }</style>", 0],
    ];
    const page = await openPage(t, Object.fromEntries(cases.map(([html], index) => [`/${index}`, html])), null);
    for (const [index, [html, layers]] of cases.entries()) {
        await page.goto(`${origin}/${index}`);
        await run(page, startText());
        await call(page, "setDefaultBackground");
        const found = await run(page, "document.querySelectorAll('body > zarvik-page-background').length");
        assert.equal(found, layers, html);
    }
    await page.goto(`${origin}/0`);
    await run(page, startText());
    await call(page, "setDefaultBackground");
    const layer = await page.evaluate(() => {
        const element = document.querySelector("zarvik-page-background");
        const { position, backgroundColor, zIndex } = element.style;
        const { width, height } = element.getBoundingClientRect();
        return { position, backgroundColor, zIndex, fills: width === innerWidth && height === innerHeight };
    });
    assert.deepEqual(layer, { position: "fixed", backgroundColor: "white", zIndex: "-2147483647", fills: true });
    await run(page, "document.body.remove()");
    await call(page, "setDefaultBackground");
});
