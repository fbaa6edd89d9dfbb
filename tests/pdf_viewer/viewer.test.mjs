// The viewer page, used as people and as the plug-in use it, in a real browser.

import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";
import test from "node:test";
import * as documents from "./documents.mjs";
import { becomeOlderEngine } from "./olderEngine.mjs";
import { drawn, localUrl, openViewer, startAgent, until } from "./support.mjs";

const currentPage = (number) => `document.getElementById("pageNumber").value === "${number}"`;
const message = (page) => page.locator("#message").innerText();

/** The first page's picture, made small: a list of color values. */
const picture = (page) =>
    page.evaluate(() => {
        const small = document.createElement("canvas");
        [small.width, small.height] = [105, 149];
        const context = small.getContext("2d");
        context.drawImage(document.querySelector(".page canvas"), 0, 0, small.width, small.height);
        return Array.from(context.getImageData(0, 0, small.width, small.height).data);
    });

function assertUndisturbed(page) {
    assert.deepEqual(page.errors, []);
    assert.deepEqual(page.requests, []);
}

test("A document is shown with its title, its pages and text that can be selected", async (t) => {
    const page = await openViewer(t, documents.plain);
    await drawn(page, 1);
    await until(page, 'document.title === "A Tale of Three Pages"');
    assert.equal(await page.textContent("#pageCount"), "/ 3");
    const dark = (await picture(page)).filter((value, i) => i % 4 === 0 && value < 160).length;
    assert.ok(dark > 50, `the picture has ${dark} dark points`);

    const line = await page.locator('.textLayer span:text("Sphinx")').first().boundingBox();
    await page.mouse.move(line.x + 1, line.y + line.height / 2);
    await page.mouse.down();
    await page.mouse.move(line.x + line.width - 1, line.y + line.height / 2, { steps: 4 });
    await page.mouse.up();
    assert.match(await page.evaluate(() => getSelection().toString()), /^Sphinx of black quartz, judge my vow\.?$/);
    assertUndisturbed(page);
});

test("A document without a title is called by its file's name", async (t) => {
    const page = await openViewer(t, documents.untitled, { url: localUrl("Größe & Maß.pdf") });
    await drawn(page, 1);
    assert.equal(await page.title(), "Größe & Maß.pdf");
});

test("Pages are turned with buttons, keys, the page's number and scrolling", async (t) => {
    const page = await openViewer(t, documents.plain);
    await drawn(page, 1);
    assert.ok(await page.isDisabled("#previousPage"));
    await page.click("#nextPage");
    await until(page, currentPage(2));
    await page.click("#previousPage");
    await until(page, currentPage(1));
    await page.focus("#pages");
    await page.keyboard.press("End");
    await until(page, currentPage(3));
    assert.ok(await page.isDisabled("#nextPage"));
    await page.fill("#pageNumber", "2");
    await page.keyboard.press("Enter");
    await until(page, currentPage(2));
    for (const nonsense of ["0", "4", "x", ""]) {
        await page.fill("#pageNumber", nonsense);
        await page.keyboard.press("Enter");
        await until(page, currentPage(2));
    }
    await page.evaluate(() => window.scrollBy(0, 100_000));
    await until(page, currentPage(3));
    assertUndisturbed(page);
});

test("The pages zoom, fit and rotate, and fit again in another window", async (t) => {
    const page = await openViewer(t, documents.plain);
    await drawn(page, 1);
    const size = () => page.locator(".page").first().boundingBox();
    const zoom = async () => parseInt(await page.textContent("#actualSize"));
    await page.click("#actualSize");
    assert.equal(await zoom(), 100);
    const actual = await size();
    await page.click("#zoomIn");
    assert.ok((await zoom()) > 100 && (await size()).width > actual.width);
    await page.click("#zoomOut");
    await page.click("#zoomOut");
    assert.ok((await zoom()) < 100 && (await size()).width < actual.width);

    await page.click("#fit");
    let { height } = await size();
    assert.ok(height <= 552 && height > 480, `fit to the page, it is ${height} high`);
    await page.setViewportSize({ width: 800, height: 500 });
    await until(page, `document.querySelector(".page").getBoundingClientRect().height <= 452`);
    await page.click("#fit");
    const { width } = await size();
    assert.ok(width <= 800 && width > 720, `fit to the width, it is ${width} wide`);

    await page.click("#rotate");
    await drawn(page, 1);
    ({ height } = await size());
    assert.ok(height < (await size()).width, "it lies on its side");
    assertUndisturbed(page);
});

test("A search marks and counts the matches, and goes through them", async (t) => {
    const page = await openViewer(t, documents.plain);
    await drawn(page, 1);
    const count = (text) => until(page, `document.getElementById("findCount").textContent === "${text}"`);
    await page.keyboard.press("Control+f");
    await page.keyboard.type("DOG");
    await count("1 of 36");
    assert.equal(await page.locator(".highlight").first().textContent(), "dog");
    await page.keyboard.press("Enter");
    await count("2 of 36");
    await page.click("#findPrevious");
    await page.click("#findPrevious");
    await count("36 of 36");
    await until(page, currentPage(3));
    await page.click("#matchCase");
    await count("No matches");
    await page.fill("#findText", "Chapter 2");
    await count("1 of 1");
    await until(page, currentPage(2));
    await page.keyboard.press("Escape");
    assert.ok(await page.isHidden("#findBar"));
    assert.equal(await page.locator(".highlight").count(), 0);
    assertUndisturbed(page);
});

test("The sidebar leads to pages by their pictures and by the outline", async (t) => {
    const page = await openViewer(t, documents.plain);
    await drawn(page, 1);
    const { width } = await page.locator("#pages").boundingBox();
    await page.click("#sidebarToggle");
    await until(page, 'document.querySelectorAll(".thumbnail canvas")[1].width > 100');
    await page.click('.thumbnail[title="Page 2"]');
    await until(page, currentPage(2));
    assert.ok((await page.locator("#pages").boundingBox()).width < width, "the pages make room");
    await page.click("#outlineTab");
    assert.equal(await page.locator(".entry").count(), 6);
    await page.click('.entry:text("Section 3.1")');
    await until(page, currentPage(3));
    await page.locator(".fold").first().click();
    assert.ok(await page.isHidden('.entry:text("Section 1.1")'));
    await page.click("#sidebarToggle");
    assert.ok(await page.isHidden("#sidebar"));
    assertUndisturbed(page);
});

test("Everything works through the agent's events as well", async (t) => {
    const page = await openViewer(t, documents.plain, { width: 640, height: 480 });
    await drawn(page, 1);
    const agent = await startAgent(page);
    await agent.click("#nextPage");
    await until(page, currentPage(2));
    await agent.scroll("#pages", -100_000);
    await until(page, currentPage(1));
    await agent.click("#sidebarToggle");
    await agent.click('.thumbnail[title="Page 2"]');
    await until(page, currentPage(2));
    await agent.scroll("#thumbnails", 200);
    assert.ok((await page.evaluate(() => document.getElementById("thumbnails").scrollTop)) > 0);
    await agent.click("#findToggle");
    await agent.type(["q", "u", "a", "r", "t", "z"]);
    await until(page, `document.getElementById("findCount").textContent === "7 of 18"`);
    await agent.type(["\n"]);
    await until(page, `document.getElementById("findCount").textContent === "8 of 18"`);
    await agent.click("#findClose");
    assert.ok(await page.isHidden("#findBar"));
    await agent.click("#pageNumber");
    await agent.type(["\b", "3", "\n"]);
    await until(page, currentPage(3));
    assertUndisturbed(page);
});

test("A protected document asks for its password", async (t) => {
    const page = await openViewer(t, documents.encrypted);
    const agent = await startAgent(page);
    await page.waitForSelector("#passwordDialog");
    await page.fill("#password", "wrong");
    await page.click("#passwordSubmit");
    await until(page, 'document.getElementById("passwordText").textContent.includes("not the right one")');
    await agent.click("#password");
    await agent.type([..."sesame", "\n"]);
    await drawn(page, 1);
    assert.ok(await page.isHidden("#passwordDialog"));
    assertUndisturbed(page);

    const other = await openViewer(t, documents.encrypted);
    await other.click("#passwordCancel");
    await other.waitForSelector("#message");
    assert.match(await message(other), /no password was given/);
});

test("What cannot be shown is said in the page", async (t) => {
    const cases = [
        [documents.notPdf, /damaged, or it is not a PDF/],
        [documents.broken, /damaged, or it is not a PDF/],
        [Buffer.alloc(0), /damaged, or it is not a PDF/],
        [null, /not found/],
    ];
    for (const [bytes, text] of cases) {
        const page = await openViewer(t, bytes);
        await page.waitForSelector("#message");
        assert.match(await message(page), text);
        assert.equal(page.errors.length, 1, String(page.errors));
        assert.deepEqual(page.requests, []);
    }
});

test("Only local documents are opened", async (t) => {
    const urls = ["https://pages.test/a.pdf", "javascript:alert(1)", "data:application/pdf,x", "MS-LOCAL-STREAM:x", ""];
    for (const url of urls) {
        const page = await openViewer(t, documents.plain, { url });
        await page.waitForSelector("#message");
        assert.match(await message(page), /not one that the viewer opens/);
        assertUndisturbed(page);
    }
});

test("A URL is nothing but a URL, whatever it looks like", async (t) => {
    const url = localUrl("a.pdf") + "?'&quot;&lt;/script&gt;--!]]&#x3c;script&#x3e;alert(1)//$&$1${1}%3C/script%3E";
    const page = await openViewer(t, documents.untitled, { url });
    await drawn(page, 1); // only this very URL leads to the document
    assert.equal(await page.evaluate(() => document.scripts.length), 4);
    assert.equal(await page.title(), "a.pdf");
    assertUndisturbed(page);
});

test("No script comes in, and nothing goes out", async (t) => {
    const page = await openViewer(t, documents.untitled);
    await drawn(page, 1);
    await page.evaluate(() => {
        const add = (tag, properties) => document.body.append(Object.assign(document.createElement(tag), properties));
        add("script", { textContent: "self.intruder = true" });
        add("script", { src: "https://pages.test/script.js" });
        add("div", { innerHTML: '<img src="x" onerror="self.intruder = true">' });
        add("img", { src: "https://pages.test/image.png" });
        add("iframe", { src: "https://pages.test/frame.html" });
        add("link", { rel: "stylesheet", href: "https://pages.test/style.css" });
    });
    await assert.rejects(page.evaluate(() => fetch("https://pages.test/data")));
    assert.equal(await page.evaluate(() => self.intruder), undefined);
    assert.deepEqual(page.requests, []);
});

test("The document can be saved as it is", async (t) => {
    const page = await openViewer(t, documents.plain);
    await drawn(page, 1);
    const [download] = await Promise.all([page.waitForEvent("download"), page.click("#download")]);
    assert.equal(download.suggestedFilename(), "a tale.pdf");
    assert.deepEqual(await readFile(await download.path()), documents.plain);
});

test("Every control can be reached in windows of all sizes", async (t) => {
    const page = await openViewer(t, documents.plain);
    await drawn(page, 1);
    await page.click("#nextPage"); // so that both ways are open
    await page.click("#sidebarToggle");
    await page.click("#findToggle");
    for (const [width, height] of [[640, 480], [800, 600], [1280, 720], [1920, 1080]]) {
        await page.setViewportSize({ width, height });
        const unreachable = await page.evaluate(() => {
            const controls = document.querySelectorAll("#toolbar *, #tabs *, #findBar *");
            return Array.from(controls)
                .filter(({ tagName }) => tagName === "BUTTON" || tagName === "INPUT")
                .filter((control) => {
                    const { left, right, top, bottom } = control.getBoundingClientRect();
                    const found = document.elementFromPoint((left + right) / 2, (top + bottom) / 2);
                    const inside = left >= 0 && right <= innerWidth && top >= 0 && bottom <= innerHeight;
                    const large = right - left >= 32 && bottom - top >= 32;
                    return !inside || !large || found?.closest("button, input") !== control;
                })
                .map(({ id }) => id);
        });
        assert.deepEqual(unreachable, [], `${width} x ${height}`);
        assert.equal(await page.evaluate(() => document.documentElement.scrollWidth), width);
    }
});

test("Text in predefined encodings is read", async (t) => {
    const page = await openViewer(t, documents.japanese);
    await drawn(page, 1);
    assert.equal(await page.textContent(".textLayer"), "日本語");
    assertUndisturbed(page);
});

test("An older engine without workers shows the same", async (t) => {
    const pages = [
        await openViewer(t, documents.painted),
        await openViewer(t, documents.painted, { init: becomeOlderEngine }),
    ];
    const [picture1, picture2] = await Promise.all(pages.map((page) => drawn(page, 1).then(() => picture(page))));
    const differences = picture1.filter((value, i) => Math.abs(value - picture2[i]) > 24).length;
    assert.ok(differences < picture1.length / 500, `${differences} of ${picture1.length} values differ`);
    const [, older] = pages;
    await until(older, 'document.title === "Größe 大"');
    await older.click("#sidebarToggle");
    await until(older, 'document.querySelector(".thumbnail canvas").width > 100');
    await older.click("#findToggle");
    await older.keyboard.type("Ünd the dog"); // accents do not count
    await until(older, 'document.getElementById("findCount").textContent === "No matches"');
    await older.fill("#findText", "änd the dög");
    await until(older, 'document.getElementById("findCount").textContent === "1 of 6"');
    assertUndisturbed(older);
});
