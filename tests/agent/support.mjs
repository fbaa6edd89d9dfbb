// Pages with the agent inside, as the plug-in makes them. Their clock stands still unless a test moves it.

import { existsSync } from "node:fs";
import { after } from "node:test";
import { chromium } from "playwright-core";
import { buildAgent } from "../../src/agent/build/build.mjs";

const executablePath = process.env.ZARVIK_CHROMIUM ?? "/usr/bin/chromium";
if (!existsSync(executablePath)) throw new Error(`There is no Chromium at ${executablePath} (Debian: chromium).`);
const starting = chromium.launch({
    executablePath,
    args: ["--no-sandbox", "--disable-background-networking", "--disable-component-update"],
});
export const { text: agentText } = await buildAgent();
const browser = await starting;
after(() => browser.close());

export const origin = "http://page.test";

/** Runs script text in a page or frame as the plug-in does. */
export const run = (frame, script) => frame.evaluate((text) => (0, eval)(text), script);

/** The text with which the plug-in starts the agent. */
export const startText = (options = {}) =>
    `${agentText};window.__initZarvik(${JSON.stringify({ expectedDevicePixelRatio: 1, ...options })});`;

// A new page takes the browser far longer than a new document, and a document is all that the agent lives in. So a
// page goes on to the next test, except one with a script of its own.
const idlePages = [];

async function newPage(initScript) {
    const context = await browser.newContext({ viewport: { width: 800, height: 600 } });
    await context.clock.install({ time: 0 });
    await context.clock.pauseAt(1000);
    await context.addInitScript(() => {
        if (window !== parent) return;
        window.sent = [];
        window._zarvikBridge = { postMessage: (message) => window.sent.push(message) };
    });
    if (initScript) await context.addInitScript(initScript);
    return context.newPage();
}

/**
 * Opens the pages, a map from path to HTML; the first one is shown. The agent starts in it with `options`, unless
 * these are null. Every message that the page sends is kept for `messages`.
 */
export async function openPage(t, pages, options = {}, { initScript } = {}) {
    const files = typeof pages === "string" ? { "/": pages } : pages;
    const page = (!initScript && idlePages.pop()) || (await newPage(initScript));
    t.after(async () => {
        await page.unrouteAll();
        if (initScript) await page.context().close();
        else idlePages.push(page);
    });
    await page.route("**/*", (route) => {
        const { host, pathname } = new URL(route.request().url());
        const body = host === "page.test" ? files[pathname] : undefined;
        return route.fulfill(
            body === undefined ? { status: 404 } : { contentType: "text/html", body: `<!doctype html>${body}` },
        );
    });
    await page.goto(origin + Object.keys(files)[0]);
    if (options) await run(page, startText(options));
    return page;
}

/** The messages that the page sent since the last call. */
export const messages = (page) => page.evaluate(() => window.sent.splice(0));

/** Polls until the expression in the page is truthy. Not by the page's own clock, which stands still. */
export async function until(frame, expression) {
    for (let attempt = 0; attempt < 500; attempt++) {
        const value = await run(frame, expression);
        if (value) return value;
        await new Promise((resolve) => setTimeout(resolve, 10));
    }
    throw new Error(`It never became true: ${expression}`);
}

/** Keeps a line "TYPE@ID button=N buttons=N detail=N" of each pointer event in the page, for `events`. */
export const recordPointerEvents = (frame) =>
    frame.evaluate(() => {
        window.seen = [];
        for (const kind of ["move", "over", "down", "up", "out", "leave", "enter"])
            for (const type of [`pointer${kind}`, `mouse${kind}`]) addEventListener(type, record, true);
        for (const type of ["click", "dblclick"]) addEventListener(type, record, true);
        function record(event) {
            const { type, target, button, buttons, detail } = event;
            seen.push(`${type}@${target.id} button=${button} buttons=${buttons} detail=${detail}`);
            window.lastEvent = event;
        }
    });

export const events = (frame) => frame.evaluate(() => window.seen.splice(0));

/** Calls a method of a component under `_zarvikInternal`. */
export const call = (frame, method, ...args) => run(frame, `_zarvikInternal.${method}(...${JSON.stringify(args)})`);
