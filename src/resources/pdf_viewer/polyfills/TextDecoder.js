// The encodings in which PDF documents hold their titles and names.

const codePoints = {
    *"utf-8"(bytes) {
        const starts = [0x80, 0x800, 0x10000];
        const followers = (first) => (first < 0xe0 ? 1 : first < 0xf0 ? 2 : 3);
        for (let i = 0; i < bytes.length; ) {
            const first = bytes[i++];
            const following = first < 0x80 ? 0 : followers(first);
            let code = following > 0 ? first & (0x3f >> following) : first;
            let valid = first < 0x80 || (first >= 0xc2 && first < 0xf5);
            for (let left = following; valid && left > 0; left--) {
                valid = (bytes[i] & 0xc0) === 0x80;
                if (valid) code = (code << 6) | (bytes[i++] & 0x3f);
            }
            valid = valid && !(following > 0 && code < starts[following - 1]);
            yield valid && code <= 0x10ffff && !(code >= 0xd800 && code < 0xe000) ? code : null;
        }
    },
    *"utf-16le"(bytes) {
        for (let i = 0; i < bytes.length; i += 2) yield i + 1 < bytes.length ? bytes[i] | (bytes[i + 1] << 8) : null;
    },
    *"utf-16be"(bytes) {
        for (let i = 0; i < bytes.length; i += 2) yield i + 1 < bytes.length ? (bytes[i] << 8) | bytes[i + 1] : null;
    },
};

class Decoder {
    constructor(encoding = "utf-8", { fatal = false } = {}) {
        const name = encoding.toLowerCase();
        this.encoding = { utf8: "utf-8", "utf-16": "utf-16le" }[name] || name;
        this.fatal = fatal;
        if (!codePoints[this.encoding]) throw new RangeError(`The encoding ${encoding} is unknown.`);
    }

    decode(bytes) {
        let text = "";
        for (const code of codePoints[this.encoding](bytes)) {
            if (code === null && this.fatal) throw new TypeError(`The bytes are not ${this.encoding}.`);
            text += code === null ? "\ufffd" : code > 0xffff ? String.fromCodePoint(code) : String.fromCharCode(code);
        }
        return text.replace(/^\ufeff/, "");
    }
}

if (!self.TextDecoder) self.TextDecoder = Decoder;
