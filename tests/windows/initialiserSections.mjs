// The sections of an object file (COFF) whose functions the C library calls when the image is loaded.

const initialisers = /^\.(ctors|init_array|CRT\$X[CIL])/;

export function initialiserSections(bytes) {
    // A file with more than 65,279 sections has another header, which begins so.
    if (bytes.readUInt16LE(0) === 0)
        throw new Error("an object file of the big kind");
    const table = 20 + bytes.readUInt16LE(16);
    // Long names are in the table of texts, behind the symbols of 18 bytes each.
    const texts = bytes.readUInt32LE(8) + 18 * bytes.readUInt32LE(12);
    return Array.from({ length: bytes.readUInt16LE(2) }, (_, index) => {
        const name = text(bytes, table + 40 * index, 8);
        return name.startsWith("/") ? text(bytes, texts + Number(name.slice(1))) : name;
    }).filter((name) => initialisers.test(name));
}

function text(bytes, start, greatestLength = Infinity) {
    const end = bytes.indexOf(0, start);
    return bytes.toString("latin1", start, Math.min(end === -1 ? bytes.length : end, start + greatestLength));
}
