// What the language itself lacks in the oldest engine that the viewer runs in.

if (typeof globalThis === "undefined") self.globalThis = self;

/** Adds the functions that are missing to a prototype or constructor. */
export function complete(object, functions) {
    for (const [name, value] of Object.entries(functions))
        if (!(name in object)) Object.defineProperty(object, name, { value, configurable: true, writable: true });
}

function at(index) {
    const position = Math.trunc(index) || 0;
    return this[position < 0 ? this.length + position : position];
}

complete(Array.prototype, {
    at,
    flat(depth = 1) {
        return this.reduce(
            (flattened, item) => flattened.concat(Array.isArray(item) && depth > 1 ? item.flat(depth - 1) : item),
            [],
        );
    },
    flatMap(map, receiver) {
        return this.map(map, receiver).flat();
    },
});
complete(Object.getPrototypeOf(Uint8Array.prototype), { at });
complete(String.prototype, {
    at,
    replaceAll(pattern, replacement) {
        const everywhere =
            pattern instanceof self.RegExp
                ? pattern
                : new self.RegExp(String(pattern).replace(/[\\^$.*+?()[\]{}|]/g, "\\$&"), "g");
        return this.replace(everywhere, replacement);
    },
});
complete(Promise, {
    allSettled(promises) {
        const settle = (promise) =>
            Promise.resolve(promise).then(
                (value) => ({ status: "fulfilled", value }),
                (reason) => ({ status: "rejected", reason }),
            );
        return Promise.all(Array.from(promises, settle));
    },
});

/** Copies what threads send each other. Buffers to transfer are copied too, which only costs memory. */
function structuredClone(value) {
    const copies = new Map();
    const copy = (original) => {
        if (typeof original === "function") throw new TypeError("A function cannot be copied.");
        if (typeof original !== "object" || original === null) return original;
        if (!copies.has(original)) copyObject(original);
        return copies.get(original);
    };
    const copyObject = (original) => {
        const keep = (result) => (copies.set(original, result), result);
        if (original instanceof ArrayBuffer) keep(original.slice(0));
        else if (ArrayBuffer.isView(original)) {
            const { constructor, buffer, byteOffset, byteLength, length = byteLength } = original;
            keep(new constructor(copy(buffer), byteOffset, length));
        } else if (original instanceof Date) keep(new Date(original.getTime()));
        else if (original instanceof Map) {
            const result = keep(new Map());
            original.forEach((item, key) => result.set(copy(key), copy(item)));
        } else if (original instanceof Set) {
            const result = keep(new Set());
            original.forEach((item) => result.add(copy(item)));
        } else if (original instanceof Blob) keep(original); // it does not change
        else {
            const result = keep(Array.isArray(original) ? new Array(original.length) : {});
            for (const key of Object.keys(original)) result[key] = copy(original[key]);
        }
    };
    return copy(value);
}
complete(self, { structuredClone });
