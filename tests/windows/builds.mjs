// Where things are, and how the tools of the Windows build are run.

import { spawn, spawnSync } from "node:child_process";
import { mkdtempSync, readFileSync, rmSync } from "node:fs";
import { tmpdir } from "node:os";
import { fileURLToPath } from "node:url";

export const root = fileURLToPath(new URL("../../", import.meta.url));
export const cache = process.env.ZARVIK_CACHE ?? `${root}.cache`;
export const version = /^project\(\S+ VERSION (\S+)/m.exec(readFileSync(`${root}CMakeLists.txt`, "utf8"))[1];

/** The folder of a preset's build, or a file in it. */
export const built = (architecture, name = "") => `${root}build/uwp-${architecture}/${name}`;

/** Calls `work` with the name of a new folder, which is deleted afterwards. */
export function withFolder(work) {
    const folder = mkdtempSync(`${tmpdir()}/zarvik-windows-`);
    try {
        return work(folder);
    } finally {
        rmSync(folder, { recursive: true, force: true });
    }
}

/** Runs a program to its end and returns what it printed; a failure is an error with all that it said. */
export function run(program, arguments_, environment = {}) {
    const { status, signal, stdout, stderr, error } = spawnSync(program, arguments_, {
        encoding: "utf8",
        env: { ...process.env, ZARVIK_CACHE: cache, ...environment },
        maxBuffer: 1 << 28,
        timeout: 600_000,
    });
    if (error)
        throw error;
    if (status !== 0)
        throw new Error(`${program} ended with ${signal ?? status}:\n${stdout}\n${stderr}`);
    return { stdout, stderr };
}

/** Compiles with the cross compiler for x64, whose programs Wine runs here. */
export function compile(...arguments_) {
    run(`${cache}/windows/bin/zig-c++`, ["-target", "x86_64-windows-gnu", "-O2", "-std=c++20", ...arguments_]);
}

/** Runs a program for x64. It has no display. */
export function wine(arguments_, environment = {}) {
    return run(`${root}cmake/windows/wine.sh`, arguments_, { DISPLAY: "", ...environment });
}

/** Starts an X server of its own; returns its display and what ends it. */
export async function startDisplay() {
    const server = spawn(
        "Xvfb", ["-displayfd", "3", "-screen", "0", "1280x1024x24", "+extension", "GLX", "-nolisten", "tcp"],
        { stdio: ["ignore", "ignore", "ignore", "pipe"] },
    );
    const number = await new Promise((resolve, reject) => {
        server.stdio[3].once("data", (text) => resolve(String(text).trim()));
        server.once("error", reject);
        server.once("exit", () => reject(new Error("the X server (Xvfb) did not start")));
    });
    return { display: `:${number}`, stop: () => server.kill() };
}
