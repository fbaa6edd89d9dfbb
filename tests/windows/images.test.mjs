// Checks the DLLs that the uwp-arm64 and uwp-x64 presets built, and that the check itself finds faults.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { PortableExecutable, appContainer, machines } from "../../cmake/windows/PortableExecutable.mjs";
import { exportTableNames, imageProblems } from "./imageProblems.mjs";

const root = new URL("../../", import.meta.url);
const exports = exportTableNames(readFileSync(new URL("src/exports/ExportTable.inc", root), "utf8"));
const built = (architecture) => readFileSync(new URL(`build/uwp-${architecture}/ZarvikOrvella.dll`, root));

test("the export table has 52 different names", () => {
    assert.equal(exports.length, 52);
    assert.equal(new Set(exports).size, 52);
});

for (const [architecture, machine] of Object.entries(machines))
    test(`the ${architecture} plug-in is right`, () => {
        assert.deepEqual(imageProblems(built(architecture), { machine, exports }), []);
    });

/** The problems of the ARM64 plug-in after `damage` has changed its bytes, or returned other bytes. */
function problemsAfter(damage, expectations = {}) {
    const bytes = built("arm64");
    const damaged = damage(bytes) ?? bytes;
    return imageProblems(damaged, { machine: machines.arm64, exports, ...expectations });
}

/** Changes bytes as an honest linker would: with the checksum to match. */
function withChecksum(change) {
    return (bytes) => {
        const image = new PortableExecutable(bytes);
        change(bytes, image);
        image.checksum = image.computeChecksum();
    };
}

/** Overwrites a text of the file, wherever it stands, with another one of the same length. */
function overwrite(bytes, from, to) {
    let offset = -1;
    while ((offset = bytes.indexOf(`${from}\0`, offset + 1, "latin1")) !== -1)
        bytes.write(to, offset, "latin1");
}

const nothing = () => {};

test("faults are found", () => {
    const clearBit = withChecksum((_, image) => (image.dllCharacteristics &= ~appContainer));
    assert.deepEqual(problemsAfter(clearBit), ["lacks the app-container bit"]);

    const flipOneBit = (bytes) => { bytes[bytes.length >> 1] ^= 1; };
    assert.deepEqual(problemsAfter(flipOneBit), ["has a wrong checksum"]);

    const desktopImport = withChecksum((bytes) => overwrite(bytes, "OLEAUT32.dll", "KERNEL32.dll"));
    assert.deepEqual(problemsAfter(desktopImport), ["imports KERNEL32.dll, which apps may not use"]);

    const renamedExport = withChecksum((bytes) => overwrite(bytes, "WebView_goBack", "WebView_goHome"));
    assert.deepEqual(problemsAfter(renamedExport), [
        "does not export WebView_goBack",
        "exports WebView_goHome, which it should not",
    ]);

    assert.deepEqual(problemsAfter(nothing, { exports: [...exports, "WebView_extra"] }), [
        "does not export WebView_extra",
    ]);
    assert.deepEqual(problemsAfter(nothing, { exports: exports.filter((name) => name !== "UnityPluginLoad") }), [
        "exports UnityPluginLoad, which it should not",
    ]);
    assert.deepEqual(problemsAfter(nothing, { machine: machines.x64 }), [
        "built for machine 0xaa64, not 0x8664",
    ]);
});

test("a damaged or foreign file is refused", () => {
    assert.throws(() => problemsAfter(() => Buffer.from("\x7fELF".padEnd(256, "\0"), "latin1")), /not a Windows image/);
    assert.throws(() => problemsAfter((bytes) => bytes.subarray(0, 0x200)));
});

// A signed program of the platform's maker shows that our sum is theirs.
test("the checksum is the platform's own", () => {
    const cache = process.env.ZARVIK_CACHE ?? new URL(".cache", root).pathname;
    const program = readFileSync(`${decodeURI(cache)}/windows/sdk/cpp/bin/10.0.28000.0/x64/midlrt.exe`);
    const image = new PortableExecutable(program);
    assert.notEqual(image.checksum, 0);
    assert.equal(image.computeChecksum(), image.checksum);
});
