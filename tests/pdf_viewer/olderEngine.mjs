// Makes Chromium lack what EdgeHTML 18 lacks, as far as PDF.js or the viewer would use it. Runs in the page, before its
// scripts. Workers are refused too, so that the worker's script runs under the same conditions.

export function becomeOlderEngine() {
    const lacking = {
        self: "globalThis structuredClone queueMicrotask ResizeObserver DOMMatrix DOMMatrixReadOnly FontFace " +
            "TextDecoder TextEncoder OffscreenCanvas createImageBitmap CompressionStream visualViewport",
        Object: "fromEntries hasOwn",
        Promise: "allSettled any withResolvers",
        "Array.prototype": "at flat flatMap findLast findLastIndex toSorted",
        "Uint8Array.prototype.__proto__": "at findLast",
        "String.prototype": "at replaceAll matchAll trimStart trimEnd",
        "CanvasRenderingContext2D.prototype":
            "getTransform resetTransform filter letterSpacing wordSpacing fontKerning direction roundRect reset",
        "CanvasPattern.prototype": "setTransform",
        "Document.prototype": "fonts replaceChildren",
        "Element.prototype": "replaceChildren scroll scrollTo scrollBy scrollIntoViewIfNeeded part checkVisibility",
        "HTMLElement.prototype": "inert",
        "Blob.prototype": "arrayBuffer text stream",
        "Crypto.prototype": "randomUUID",
        "MediaQueryList.prototype": "addEventListener removeEventListener",
    };
    for (const [path, names] of Object.entries(lacking)) {
        const object = path.split(".").reduce((value, name) => value[name], self);
        for (const name of names.split(" ")) delete object[name];
    }
    const refuse = (name) =>
        class {
            constructor() {
                throw new TypeError(`${name} cannot be constructed.`);
            }
        };
    self.ReadableStream = refuse("ReadableStream");
    self.Worker = refuse("Worker");
    self.RegExp = new Proxy(RegExp, {
        construct(target, [source, flags = ""]) {
            if (/\\[pP]\{|\(\?<|\\k</.test(source) || /[sdv]/.test(flags)) throw new SyntaxError(`Unknown: ${source}`);
            return new target(source, flags);
        },
    });
}
