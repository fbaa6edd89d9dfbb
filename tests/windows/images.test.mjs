// Checks the DLLs that the uwp-arm64 and uwp-x64 presets built, and that the checks themselves find faults.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { cache, built, root, version } from "./builds.mjs";
import { exportTableNames, imageProblems } from "./imageProblems.mjs";
import {
    PortableExecutable, appContainer, dynamicBase, machines, noExecuteCompatible, shared, writable,
} from "./PortableExecutable.mjs";

const plugIn = "ZarvikOrvella";
const component = "ZarvikWebViewRuntimeComponent";

/** What is expected of each DLL. No build may leave the machine's own folder names in it. */
const expected = {
    [plugIn]: {
        exports: exportTableNames(readFileSync(`${root}src/exports/ExportTable.inc`, "utf8")),
        greatestSize: 4 << 20,
    },
    [component]: {
        exports: ["DllCanUnloadNow", "DllGetActivationFactory"],
        greatestSize: 1 << 19,
    },
};
for (const each of Object.values(expected))
    Object.assign(each, { version: `${version}.0`, foreignText: root });

test("the export table has 52 different names", () => {
    const { exports } = expected[plugIn];
    assert.equal(exports.length, 52);
    assert.equal(new Set(exports).size, 52);
});

for (const [architecture, machine] of Object.entries(machines))
    for (const [name, expectations] of Object.entries(expected))
        test(`${name}.dll for ${architecture} is right`, () => {
            const bytes = readFileSync(built(architecture, `${name}.dll`));
            assert.deepEqual(imageProblems(bytes, { machine, ...expectations }), []);
        });

/** The problems of the ARM64 plug-in after `damage` has changed its bytes, or returned other bytes. */
function problemsAfter(damage, expectations = {}) {
    const bytes = readFileSync(built("arm64", `${plugIn}.dll`));
    const damaged = damage(bytes) ?? bytes;
    return imageProblems(damaged, { machine: machines.arm64, ...expected[plugIn], ...expectations });
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

function addToSection(name, bits) {
    return withChecksum((bytes, image) => {
        const section = image.sections.find((each) => each.name === name);
        bytes.writeUInt32LE((section.characteristics | bits) >>> 0, section.characteristicsOffset);
    });
}

const nothing = () => {};

test("faults are found", () => {
    const { exports } = expected[plugIn];

    const clearBits = withChecksum((_, image) => {
        image.dllCharacteristics &= ~(appContainer | dynamicBase | noExecuteCompatible);
    });
    assert.deepEqual(problemsAfter(clearBits), [
        "lacks the app-container bit",
        "lacks the dynamic-base bit",
        "lacks the no-execute bit",
    ]);

    const flipOneBit = (bytes) => { bytes[bytes.length >> 1] ^= 1; };
    assert.deepEqual(problemsAfter(flipOneBit), ["has a wrong checksum"]);

    const desktopImport = withChecksum((bytes) => overwrite(bytes, "OLEAUT32.dll", "KERNEL32.dll"));
    assert.deepEqual(problemsAfter(desktopImport), ["imports KERNEL32.dll, which apps may not use"]);

    const renamedExport = withChecksum((bytes) => overwrite(bytes, "WebView_goBack", "WebView_goHome"));
    assert.deepEqual(problemsAfter(renamedExport), [
        "does not export WebView_goBack",
        "exports WebView_goHome, which it should not",
    ]);
    assert.deepEqual(problemsAfter(nothing, { exports: exports.filter((name) => name !== "UnityPluginLoad") }), [
        "exports UnityPluginLoad, which it should not",
    ]);

    assert.deepEqual(problemsAfter(addToSection(".text", writable)), [
        "has the section .text, which is both writable and executable",
    ]);
    assert.deepEqual(problemsAfter(addToSection(".data", shared)), ["has the section .data, which processes share"]);

    // Entries of type 0 are padding.
    const emptyRelocations = withChecksum((bytes, image) => {
        const section = image.sections.find(({ name }) => name === ".reloc");
        bytes.fill(0, section.fileOffset + 8, section.fileOffset + bytes.readUInt32LE(section.fileOffset + 4));
        bytes.writeUInt32LE(section.size, section.fileOffset + 4);
        bytes.fill(0, section.fileOffset + 8, section.fileOffset + section.size);
    });
    assert.deepEqual(problemsAfter(emptyRelocations), ["has no base relocations"]);

    assert.deepEqual(problemsAfter(nothing, { version: "1.2.3.4" }), [`has the version ${version}.0, not 1.2.3.4`]);
    assert.match(problemsAfter(nothing, { greatestSize: 9 }).join(), /^is \d+ bytes long, above its budget of 9$/);
    assert.deepEqual(problemsAfter(nothing, { foreignText: "browserAgent" }), ["holds the text browserAgent"]);
    assert.deepEqual(problemsAfter(nothing, { foreignText: "ProductName" }), ["holds the text ProductName"]);
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
    const program = readFileSync(`${cache}/windows/sdk/cpp/bin/10.0.28000.0/x64/midlrt.exe`);
    const image = new PortableExecutable(program);
    assert.notEqual(image.checksum, 0);
    assert.equal(image.computeChecksum(), image.checksum);
});
