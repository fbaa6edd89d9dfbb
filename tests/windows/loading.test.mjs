// A DLL is loaded under a system lock. Whoever calls the Windows Runtime there, loads a library or waits may hang the
// app for good, so our DLLs must do next to nothing: Wine's log of all calls between libraries shows what they do. The log
// exists for x64 alone; on both processors the compiler sees to it that our own sources leave nothing to be done then.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { test } from "node:test";
import { built, compile, root, wine, withFolder } from "./builds.mjs";
import { PortableExecutable } from "./PortableExecutable.mjs";

const names = ["ZarvikOrvella", "ZarvikWebViewRuntimeComponent"];

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

test("loading calls nothing that could wait", () =>
    withFolder((folder) => {
        const loader = `${folder}/load.exe`;
        compile("-municode", `${root}tests/windows/loading/load.cpp`, "-o", loader);
        for (const name of names) {
            const calls = callsAtLoading(loader, built("x64", `${name}.dll`));
            assert.ok(calls.includes("ucrtbase._initterm"), `the calls of ${name} were not seen: ${calls}`);
            const harmful = calls.filter((call) => !harmless.some((pattern) => pattern.test(call)));
            assert.deepEqual(harmful, [], name);
        }
    }));
