// A DLL is loaded under a system lock. Whoever calls the Windows Runtime there, loads a library or waits may hang the
// app for good, so our DLLs must do next to nothing: Wine's log of all calls between libraries shows what they do.

import assert from "node:assert/strict";
import { readFileSync, readdirSync } from "node:fs";
import { test } from "node:test";
import { built, cache, compile, root, wine, withFolder } from "./builds.mjs";
import { PortableExecutable, machines } from "./PortableExecutable.mjs";
import { initialiserSections } from "./initialiserSections.mjs";

const names = ["ZarvikOrvella", "ZarvikWebViewRuntimeComponent"];
const busySource = `${root}tests/windows/loading/busy.cpp`; // It breaks the rule.

// The C library keeping its list of functions for the end, and the locks it keeps that with.
const harmless = [
    /^ucrtbase\.(_initterm|_initterm_e|_initialize_onexit_table|_register_onexit_function|_execute_onexit_table)$/,
    /^ntdll\.Rtl(Initialize|Enter|Leave|Delete)CriticalSection$/,
];

/** What the DLL called of other libraries while it was loaded and unloaded. */
function callsAtLoading(loader, file) {
    const { stderr } = wine([loader, `Z:${file}`], { WINEDEBUG: "+relay" });
    const size = imageSize(file);
    const name = file.replace(/.*\//, "");
    const entry = new RegExp(`Call PE DLL \\(proc=\\w+,module=(\\w+) L"${name}",reason=(\\w+)`);

    let base;
    const reasons = [];
    const calls = [];
    for (const line of stderr.split("\n")) {
        const [, module, reason] = entry.exec(line) ?? [];
        if (module !== undefined) {
            base = Number.parseInt(module, 16);
            reasons.push(reason);
        }
        const [, called, caller] = /:Call (\S+?)\(.* ret=([0-9a-f]+)\r?$/.exec(line) ?? [];
        const offset = Number.parseInt(caller, 16) - base;
        if (offset >= 0 && offset < size)
            calls.push(called);
    }
    assert.deepEqual(reasons, ["PROCESS_ATTACH", "PROCESS_DETACH"], `${name} was not seen to be loaded and unloaded`);
    return [...new Set(calls)];
}

function imageSize(file) {
    const sections = new PortableExecutable(readFileSync(file)).sections;
    return Math.max(...sections.map(({ address, size }) => address + size));
}

const harmful = (calls) => calls.filter((call) => !harmless.some((pattern) => pattern.test(call)));

test("loading calls nothing that could wait", () =>
    withFolder((folder) => {
        const loader = `${folder}/load.exe`;
        compile("-municode", `${root}tests/windows/loading/load.cpp`, "-o", loader);
        for (const name of names) {
            const calls = callsAtLoading(loader, built("x64", `${name}.dll`));
            assert.ok(calls.includes("ucrtbase._initterm"), `the calls of ${name} were not seen: ${calls}`);
            assert.deepEqual(harmful(calls), [], name);
        }

        const library = `${folder}/busy.dll`;
        compile(
            "-shared", "-isystem", `${cache}/windows/include`, busySource,
            `${cache}/windows/sdk/cpp.x64/um/x64/WindowsApp.lib`, "-o", library,
        );
        const calls = harmful(callsAtLoading(loader, library));
        assert.deepEqual(calls.sort(), ["combase.RoGetActivationFactory", "kernelbase.LoadLibraryExW"]);
    }));

// The log exists for x64 alone. On both processors our own sources leave nothing to be done at loading, so there the
// rest is the C++ library, which is the same.
for (const architecture of Object.keys(machines))
    test(`no source has a static initialiser (${architecture})`, () => {
        const files = readdirSync(built(architecture, "src"), { recursive: true });
        const objects = files.filter((name) => name.endsWith(".obj"));
        for (const name of ["UwpWebView.cpp.obj", "JavaScriptBridge.cpp.obj", "AgentScript.cpp.obj"])
            assert.ok(objects.some((each) => each.endsWith(`/${name}`)), `${name} was not found`);
        for (const name of objects)
            assert.deepEqual(initialiserSections(readFileSync(built(architecture, `src/${name}`))), [], name);
    });

test("a static initialiser is found", () =>
    withFolder((folder) => {
        for (const target of ["x86_64", "aarch64"]) {
            const object = `${folder}/${target}.obj`;
            compile(
                "-target", `${target}-windows-gnu`, "-isystem", `${cache}/windows/include`, "-c", busySource, "-o", object,
            );
            assert.equal(initialiserSections(readFileSync(object)).length, 1, target);
        }
    }));
