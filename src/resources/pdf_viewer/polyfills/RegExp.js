// Regular expressions with classes by Unicode property, which PDF.js searches with. The bundler puts this in the place
// of every `RegExp`. Older engines get the classes spelled out.

import { unicodeProperties } from "unicode-properties";

const native = self.RegExp;

function knowsProperties() {
    try {
        return Boolean(new native("\\p{L}", "u"));
    } catch {
        return false;
    }
}

/** The ranges of a property as the inside of a class. They are held as distances in base 36. */
function rangesOf(name) {
    let last = 0;
    const ends = unicodeProperties[name].split(" ").map((distance) => (last += parseInt(distance, 36)));
    const escaped = ends.map((code) => `\\u{${code.toString(16)}}`);
    return escaped.map((end, i) => (i % 2 ? `-${end}` : end)).join("");
}

function spellOut(source) {
    let inClass = false;
    return source.replace(/\\p\{(\w+)\}|\\[^]|[[\]]/g, (token, name) => {
        if (name) return inClass ? rangesOf(name) : `[${rangesOf(name)}]`;
        if (token.length === 1) inClass = token === "[";
        return token;
    });
}

function SpellingRegExp(source, flags) {
    const text = source instanceof native ? source.source : String(source);
    return new native(text.includes("\\p{") ? spellOut(text) : source, flags);
}

export const UnicodeRegExp = knowsProperties() ? native : SpellingRegExp;
