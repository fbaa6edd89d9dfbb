// What the bundler makes of the sources of PDF.js on their way into the page.

import assert from "node:assert/strict";
import { readFile } from "node:fs/promises";

/**
 * Replaced texts of the sources: [file, text, how often it is there, what stands in its place]. The names that come in
 * are those of viewer/replacements.js.
 */
const replacements = [
    // No code is made out of text.
    ["build/pdf.js", "new Function(", 2, "refuseEvaluation("],
    ["build/pdf.js", 'eval("require")', 1, "refuseEvaluation"],
    ["build/pdf.worker.js", "new Function(", 2, "refuseEvaluation("],
    // The worker's text is in the page, in a blob of the page's own origin.
    ["build/pdf.js", "!PDFWorkerUtil.isSameOrigin(window.location.href, workerSrc)", 1, "false"],
    ["build/pdf.js", "await (0, _display_utils.loadScript)(this.workerSrc);", 1, "runWorkerHere();"],
    // So are the pictures of annotations.
    [
        "build/pdf.js",
        'this.imageResourcesPath + "annotation-" + this.data.name.toLowerCase() + ".svg"',
        1,
        "annotationIcon(this.data.name)",
    ],
    [
        "build/pdf.js",
        '`${this.imageResourcesPath}annotation-${/paperclip/i.test(data.name) ? "paperclip" : "pushpin"}.svg`',
        1,
        'annotationIcon(/paperclip/i.test(data.name) ? "paperclip" : "pushpin")',
    ],
    // Text is measured in the very size that it has in the page: some systems round sizes to whole pixels, and a
    // hundredth decides which way.
    [
        "build/pdf.js",
        "textDivProperties.fontSize = fontHeight;",
        1,
        "textDivProperties.fontSize = Number(fontHeight.toFixed(2));",
    ],
    // A match that comes into sight does so below the search bar.
    ["web/pdf_viewer.js", "const MATCH_SCROLL_OFFSET_TOP = -50;", 1, "const MATCH_SCROLL_OFFSET_TOP = -120;"],
];

function replaceTexts(file, text) {
    return replacements
        .filter(([name]) => file.endsWith(`/pdfjs-dist/${name}`))
        .reduce((result, [name, old, count, replacement]) => {
            const parts = result.split(old);
            assert.equal(parts.length - 1, count, `${name} does not hold ${count} times: ${old}`);
            return parts.join(replacement);
        }, text);
}

/** Regular expression literals with Unicode properties become calls, so that older engines read the script at all. */
function callRegExp(text) {
    return text.replace(/= \/(.*\\p\{.*)\/([a-z]+);$/gm, (_, source, flags) => {
        return `= new RegExp(${JSON.stringify(source)}, "${flags}");`;
    });
}

/** The code points of the Unicode properties that the sources name, as distances between the ends of their ranges. */
function unicodeProperties() {
    const ranges = (name) => {
        const property = new RegExp(`\\p{${name}}`, "u");
        const ends = [];
        let inside = false;
        for (let code = 0; code <= 0x110000; code++) {
            const matches = code <= 0x10ffff && property.test(String.fromCodePoint(code));
            if (matches !== inside) ends.push(inside ? code - 1 : code);
            inside = matches;
        }
        return ends.map((end, i) => (end - (i ? ends[i - 1] : 0)).toString(36)).join(" ");
    };
    const names = ["L", "M", "Mn", "P", "Cf", "Ideographic"];
    return Object.fromEntries(names.map((name) => [name, ranges(name)]));
}

/** Writes `:is(a, b)` out as a list of selectors: an older engine drops a whole rule that it cannot read. */
export function expandSelectors(css) {
    const expand = (selector) => {
        const [, before, inside, after] = /^([^]*?):is\(([^()]*)\)([^]*)$/.exec(selector) ?? [];
        if (inside === undefined) return [selector];
        return inside.split(",").flatMap((choice) => expand(before + choice.trim() + after));
    };
    // Commas inside parentheses belong to the alternatives.
    const split = (list) => list.split(/,(?![^(]*\))/);
    return css.replace(/([^{};]*:is\([^{};]*)\{/g, (_, list) => `${split(list).flatMap(expand).join(",")}{`);
}

/** The style of the layers in use: text, annotations and pages, not those of forms in XML and of the editor. */
function usedStyle(css) {
    const [xfa] = css.match(/^:root \{\s*--xfa-unfocused-field-background/m);
    const [pages] = css.match(/^:root \{\s*--viewer-container-height/m);
    return expandSelectors(css.slice(0, css.indexOf(xfa)) + css.slice(css.indexOf(pages)));
}

export const pdfjsSources = {
    name: "pdfjs-sources",
    setup(build) {
        build.onLoad({ filter: /[/\\]pdfjs-dist[/\\].*\.js$/ }, async ({ path }) => ({
            contents: callRegExp(replaceTexts(path.replaceAll("\\", "/"), await readFile(path, "utf8"))),
        }));
        build.onLoad({ filter: /[/\\]pdf_viewer\.css$/ }, async ({ path }) => ({
            contents: usedStyle(await readFile(path, "utf8")),
            loader: "css",
        }));
        build.onResolve({ filter: /^unicode-properties$/ }, () => ({ path: "unicode-properties", namespace: "made" }));
        build.onLoad({ filter: /.*/, namespace: "made" }, () => ({
            contents: `export const unicodeProperties = ${JSON.stringify(unicodeProperties())};`,
        }));
    },
};
