// The runtime slice promises to refuse what the real C++/WinRT refuses. Here the real one is asked; ctest asks the slice.

import assert from "node:assert/strict";
import { test } from "node:test";
import { cache, root, run } from "./builds.mjs";

const windows = `${cache}/windows`;

test("the real C++/WinRT has the verdicts that the slice must have", () => {
    const { stdout } = run(`${root}tests/slice/check.sh`, [
        "platform", `${windows}/bin/zig-c++`, "-target", "x86_64-windows-gnu", "-std=c++20", "-O2",
        "-DUNICODE", "-D_UNICODE", "-DNOMINMAX", "-DWIN32_LEAN_AND_MEAN",
        "-isystem", `${windows}/include`, `-I${root}src`, `-I${root}src/bridge/projection`,
    ]);
    assert.match(stdout, /^[1-9]\d* refusals expected, 0 missing/);
});
