// The viewer page in a browser of its own, with documents at addresses of the local scheme.

import { existsSync } from "node:fs";
import { after } from "node:test";
import { chromium } from "playwright-core";
import { buildAgent } from "../../src/agent/build/build.mjs";
import { buildViewer } from "../../src/resources/pdf_viewer/build/build.mjs";
import { placeholder } from "../../src/resources/pdf_viewer/build/checks.mjs";

const executablePath = process.env.ZARVIK_CHROMIUM ?? "/usr/bin/chromium";
if (!existsSync(executablePath)) throw new Error(`There is no Chromium at ${executablePath} (Debian: chromium).`);
const starting = chromium.launch({
    executablePath,
    args: ["--no-sandbox", "--disable-background-networking", "--disable-component-update"],
});
const { text: agentText } = await buildAgent();
const { text: template } = await buildViewer();
const browser = await starting;
after(() => browser.close());

export const localUrl = (name) =>
    `ms-local-stream://app_6c6f63616c/file/C%3A%5CDocuments%5C${encodeURIComponent(name)}`;

const aUrl = localUrl("a tale.pdf");

/** Stands for the platform's requests, which Chromium does not make for the scheme. Runs in the page. */
function answerLocalRequests({ documentUrl, document }) {
    class LocalRequest extends XMLHttpRequest {
        open(method, url) {
            this.document = new URL(url).href === new URL(documentUrl).href ? document : undefined;
        }
        setRequestHeader() {}
        getResponseHeader() {
            return null;
        }
        get readyState() {
            return this.answered ? 4 : 1;
        }
        get status() {
            return this.document === undefined ? 404 : 200;
        }
        get response() {
            return Uint8Array.from(atob(this.document ?? ""), (character) => character.charCodeAt(0)).buffer;
        }
        abort() {}
        send() {
            setTimeout(() => {
                this.answered = true;
                this.onreadystatechange?.();
            });
        }
    }
    self.XMLHttpRequest = LocalRequest;
}

/**
 * Opens the viewer with a document. `bytes` are what is served for it, null if nothing is; `init` runs before the
 * page's own scripts. Whatever the page logs as an error, and whatever it asks of the network, is kept in `page.errors`
 * and `page.requests`.
 */
export async function openViewer(t, bytes, { url = aUrl, width = 800, height = 600, init } = {}) {
    const context = await browser.newContext({ viewport: { width, height } });
    t.after(() => context.close());
    const page = await context.newPage();
    page.setDefaultTimeout(10_000);
    page.errors = [];
    page.requests = [];
    page.on("console", (message) => message.type() === "error" && page.errors.push(message.text()));
    page.on("pageerror", (error) => page.errors.push(String(error)));
    await page.route("**/*", (route) => {
        const requested = route.request().url();
        const body = template.split(placeholder).join(url);
        if (requested === "http://viewer.test/pdf")
            return route.fulfill({ contentType: "text/html; charset=utf-8", body });
        page.requests.push(requested);
        return route.abort();
    });
    if (init) await page.addInitScript(init);
    await page.addInitScript(answerLocalRequests, { documentUrl: url, document: bytes?.toString("base64") });
    await page.goto("http://viewer.test/pdf");
    return page;
}

/** Waits until the page with this number is drawn, text included. */
export const drawn = (page, number) =>
    page.waitForSelector(`.page[data-page-number="${number}"][data-loaded] .textLayer span`);

/** Polls until the expression in the page is truthy. From outside, since the page evaluates no text. */
export async function until(page, expression) {
    for (const end = Date.now() + 10_000; Date.now() < end; ) {
        if (await page.evaluate(expression)) return;
        await new Promise((resolve) => setTimeout(resolve, 20));
    }
    throw new Error(`It never became true: ${expression}`);
}

/**
 * Starts the in-page agent, and returns what native code does through it. Positions are those of the elements that the
 * selectors find.
 */
export async function startAgent(page) {
    await page.evaluate(`window._zarvikBridge = { postMessage() {} };
        ${agentText};window.__initZarvik({ expectedDevicePixelRatio: 1 });`);
    const call = (text) => page.evaluate(`_zarvikInternal.${text};`);
    const center = async (selector) => {
        const { x, y, width, height } = await page.locator(selector).boundingBox();
        return `${Math.round(x + width / 2)}, ${Math.round(y + height / 2)}`;
    };
    return {
        click: async (selector) => call(`pointerInputManager.click(${await center(selector)})`),
        scroll: async (selector, deltaY) =>
            call(`scrollManager.scrollAtPoint(0, ${deltaY}, ${await center(selector)})`),
        type: async (keys) => {
            for (const key of keys) await call(`keyboardInputManager.sendKey(${JSON.stringify(key)})`);
        },
    };
}
