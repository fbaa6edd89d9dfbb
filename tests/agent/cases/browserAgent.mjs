import assert from "node:assert/strict";
import { test } from "node:test";
import { call, messages, openPage, origin, run, startText } from "../support.mjs";

const transparency = (value) => `{"type":"zarvik.webview.pageTransparencyDetermined","value":${value}}`;
const urlChanged = (url, title, type) =>
    `{"type":"zarvik.webview.urlChanged","urlAction":{"Url":"${url}","Title":"${title}","Type":"${type}"}}`;
const titleChanged = (title) => `{"type":"zarvik.webview.titleChanged","value":"${title}"}`;
const consoleMessage = (level, text) =>
    JSON.stringify({ type: "zarvik.webview.consoleMessageLogged", level, message: text });
const focused = (type) => `{"type":"zarvik.webview.focusedInputFieldChanged","value":"${type}"}`;

test("at its start the agent reports transparency, URL and then the title", async (t) => {
    const page = await openPage(t, "<title>T</title>");
    assert.deepEqual(await messages(page), [transparency(false), urlChanged(`${origin}/`, "T", "LOAD")]);
    await page.clock.runFor(199);
    assert.deepEqual(await messages(page), []);
    await page.clock.runFor(1);
    assert.deepEqual(await messages(page), [titleChanged("T")]);
});

test("in a document that still loads, what needs its content waits for it", async (t) => {
    const html = "<title>T</title><meta name=transparent content=true><input autofocus>";
    const page = await openPage(t, html, null, { initScript: startText({ enableFocusedInputFieldEvents: true }) });
    assert.deepEqual(await messages(page), [urlChanged(`${origin}/`, "", "LOAD"), transparency(true)]);
    await run(page, "document.querySelector('input').focus()");
    await page.clock.runFor(200);
    assert.deepEqual(await messages(page), [titleChanged("T"), focused("TEXT")]);
});

test("changes of the URL are reported with their kind", async (t) => {
    const page = await openPage(t, "<title>T</title>");
    await messages(page);
    await run(page, `
        history.pushState(null, "", "#a");
        history.pushState(null, "", "#a");
        history.replaceState({ n: 1 }, "", "/b")`);
    assert.deepEqual(await messages(page), [
        urlChanged(`${origin}/#a`, "T", "PUSH_STATE"),
        urlChanged(`${origin}/#a`, "T", "PUSH_STATE"),
        urlChanged(`${origin}/b`, "T", "REPLACE_STATE"),
    ]);
    assert.deepEqual(await run(page, "history.state"), { n: 1 });
    await page.evaluate(async () => {
        const changed = new Promise((resolve) => addEventListener("hashchange", resolve));
        location.hash = "c";
        await changed;
        dispatchEvent(new Event("yt-navigate-finish"));
    });
    assert.deepEqual(await messages(page), [
        urlChanged(`${origin}/b#c`, "T", "HASH_CHANGE"),
        urlChanged(`${origin}/b#c`, "T", "PUSH_STATE"),
    ]);
    await assert.rejects(run(page, "history.pushState(null, '', 'http://other.test/')"), /SecurityError/);
    assert.deepEqual(await messages(page), []);

    await run(page, `
        window.errors = [];
        console.error = (text, error) => errors.push([text, error.name]);
        delete window._zarvikBridge;
        history.pushState(null, "", "#d")`);
    assert.deepEqual(await run(page, "errors"), [["An error occurred while handling the URL change.", "TypeError"]]);
});

test("pages that the plug-in reports by itself send no URL", async (t) => {
    for (const address of ["about:blank", `${origin}/viewer.pdf?file=x`]) {
        const page = await openPage(t, { "/viewer.pdf": "" }, null);
        await page.goto(address);
        await run(page, startText());
        await run(page, "history.pushState(null, '', location.href)");
        assert.deepEqual(await messages(page), [transparency(false)], address);
    }
});

test("a title is reported when it is not empty and not the last one", async (t) => {
    const page = await openPage(t, "<title>A</title>");
    await messages(page);
    for (const title of ["A", "", "A", "B", "A"]) {
        await run(page, `document.title = "${title}"`);
        await page.clock.runFor(200);
    }
    assert.deepEqual(await messages(page), [titleChanged("A"), titleChanged("B"), titleChanged("A")]);
});

test("a page is transparent if its first such meta element says exactly so", async (t) => {
    const cases = [
        ['<meta name="transparent" content="true">', true],
        ['<meta name="x"><meta name="transparent" content="false"><meta name="transparent" content="true">', false],
        ['<meta name="transparent" content="TRUE">', false],
        ['<meta name="transparent" content=" true">', false],
        ['<meta name="Transparent" content="true">', false],
        ['<meta name="transparent">', false],
    ];
    const page = await openPage(t, Object.fromEntries(cases.map(([html], index) => [`/${index}`, html])), null);
    for (const [index, [html, expected]] of cases.entries()) {
        await page.goto(`${origin}/${index}`);
        await run(page, startText());
        assert.equal((await messages(page))[0], transparency(expected), html);
    }
});

test("console calls are forwarded as text while that is on, and always made", async (t) => {
    const page = await openPage(t, "");
    await messages(page);
    await run(page, `
        window.logged = [];
        for (const method of ["log", "info", "debug", "error", "warn", "trace"])
            console[method] = function (...args) { logged.push([method, args.length, this === console]); };`);
    await run(page, "console.log('off')");
    assert.deepEqual(await messages(page), []);

    // Detached from its object, as the binding allows.
    await run(page, `
        window.setEnabled = _zarvikInternal.browserAgent.setConsoleMessageEventsEnabled;
        setEnabled(true);
        setEnabled(true)`);
    await run(page, `
        console.log("a", {b: 1}, null, undefined); console.info([1, "x"]); console.debug(); console.warn(true, 2.5);
        console.error(new TypeError("bad"), "after"); console.trace("no");
        const cyclic = {}; cyclic.self = cyclic; console.log(cyclic);`);
    assert.deepEqual(await messages(page), [
        consoleMessage("LOG", 'a, {"b":1}, null, '),
        consoleMessage("LOG", '[1,"x"]'),
        consoleMessage("DEBUG", ""),
        consoleMessage("WARNING", "true, 2.5"),
        consoleMessage("ERROR", "TypeError: bad, after"),
    ]);
    await run(page, "setEnabled(false); console.log('off again')");
    assert.deepEqual(await messages(page), []);
    await run(page, "setEnabled(true); console.log('on again')");
    assert.deepEqual(await messages(page), [consoleMessage("LOG", "on again")]);
    assert.deepEqual(await run(page, "logged"), [
        ["log", 1, true], ["log", 4, true], ["info", 1, true], ["debug", 0, true], ["warn", 2, true],
        ["error", 2, true], ["trace", 1, true], ["log", 1, true], ["log", 1, true], ["log", 1, true],
    ]);

    const other = await openPage(t, "", { enableConsoleMessageEvents: true });
    await messages(other);
    await run(other, "console.log('from the start')");
    assert.deepEqual(await messages(other), [consoleMessage("LOG", "from the start")]);
});

test("the focused input field is reported when it changes and when it is clicked", async (t) => {
    const page = await openPage(t, `
        <input id=text><textarea id=area></textarea><input id=box type=checkbox><input id=search type=SEARCH>
        <div id=editable contenteditable>x</div><div id=host></div><button id=button>b</button>`);
    await run(page, `
        host.attachShadow({ mode: "open" }).innerHTML = "<div></div>";
        host.shadowRoot.firstChild.attachShadow({ mode: "open" }).innerHTML = "<input>";
        window.deep = host.shadowRoot.firstChild.shadowRoot.firstChild;`);
    await messages(page);
    const afterFocusOf = async (element) => {
        await run(page, `${element}.focus()`);
        await page.clock.runFor(200);
        return messages(page);
    };
    assert.deepEqual(await afterFocusOf("text"), []);

    await call(page, "browserAgent.setFocusedInputFieldEventsEnabled", true);
    await call(page, "browserAgent.setFocusedInputFieldEventsEnabled", true);
    await page.evaluate(() => {
        const real = Document.prototype.__lookupGetter__("activeElement");
        const get = () => (window.reads++, real.call(document));
        window.reads = 0;
        Object.defineProperty(document, "activeElement", { configurable: true, get });
    });
    await page.clock.runFor(200);
    // Read to see whether it can be edited, and to take it. A second timer would read it four times.
    assert.equal(await run(page, "delete document.activeElement; reads"), 2);
    assert.deepEqual(await messages(page), [focused("TEXT")]);

    await run(page, "text.click(); area.click()");
    assert.deepEqual(await messages(page), [focused("TEXT")]);
    assert.deepEqual(await afterFocusOf("area"), [focused("TEXT")]);
    await run(page, "text.click()");
    assert.deepEqual(await messages(page), []);
    assert.deepEqual(await afterFocusOf("box"), [focused("NONE")]);
    assert.deepEqual(await afterFocusOf("button"), []);
    assert.deepEqual(await afterFocusOf("search"), [focused("TEXT")]);
    await call(page, "browserAgent.setFocusedInputFieldEventsEnabled", false);
    assert.deepEqual(await afterFocusOf("button"), [focused("NONE")]);
    assert.deepEqual(await afterFocusOf("editable"), [focused("TEXT")]);
    assert.deepEqual(await afterFocusOf("button"), [focused("NONE")]);
    assert.deepEqual(await afterFocusOf("deep"), [focused("TEXT")]);
    await run(page, "deep.click()");
    assert.deepEqual(await messages(page), [focused("TEXT")]);
});
