// The runtime slice promises to refuse what the real C++/WinRT refuses. Here the real one is asked; ctest asks the slice.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { test } from "node:test";
import { fileURLToPath } from "node:url";

const root = fileURLToPath(new URL("../../", import.meta.url));
const windows = `${process.env.ZARVIK_CACHE ?? `${root}.cache`}/windows`;

test("the real C++/WinRT has the verdicts that the slice must have", () => {
    const { status, stdout, stderr } = spawnSync(
        `${root}tests/slice/check.sh`,
        [
            "platform", `${windows}/bin/zig-c++`, "-target", "x86_64-windows-gnu", "-std=c++20", "-O2", "-s",
            "-DUNICODE", "-D_UNICODE", "-DNOMINMAX", "-DWIN32_LEAN_AND_MEAN",
            "-isystem", `${windows}/include`, `-I${root}src`, `-I${root}src/bridge/projection`,
        ],
        { encoding: "utf8" },
    );
    assert.equal(status, 0, stderr);
    assert.match(stdout, /^[1-9]\d* refusals expected, 0 missing/);
});
