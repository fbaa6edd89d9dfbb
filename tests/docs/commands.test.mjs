// Runs the commands that the documentation shows, in the order of its pages. Needs what `./test linux` builds; those about
// Windows run where that has been built too.

import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { existsSync, mkdtempSync, readdirSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";

const root = fileURLToPath(new URL("../..", import.meta.url));
const scratch = mkdtempSync(join(tmpdir(), "zarvik-docs-"));
after(() => rmSync(scratch, { recursive: true }));

const page = join(scratch, "page.html");
writeFileSync(page, "<title>Example</title><h1>Example</h1>");

const script = join(scratch, "player.script");
writeFileSync(script, readFileSync(join(root, "docs/images/player.script"), "utf8").replaceAll("docs/images", scratch));

/** The lines of a page's shell blocks. */
function commandsOf(file) {
    const blocks = readFileSync(join(root, file), "utf8").matchAll(/^ *```sh\n(.*?)^ *```/gms);
    return [...blocks].flatMap(([, block]) => block.split("\n").map((line) => line.trim()).filter(Boolean));
}

/** What stands in for an example's names, and for what never ends by itself or takes an hour. */
function runnable(command) {
    return command
        .replace(/ +#.*/, "")
        .replace(/https:\/\/example\.(org|com)/g, `file://${page}`)
        .replace("--script FILE", `--script ${script}`)
        .replace("--record FILE", `--record ${scratch}/recording --script ${script}`)
        .replace(/\bpackage$/, join(scratch, "package"))
        .replace(/^\.\/run bench.*/, "ZARVIK_SKIP_SETUP=1 ./run bench elements --sides bare --rounds 1 --seconds 1")
        .replace(/^(ctest .*)/, "$1 -R unit-tests")
        .replace("ZARVIK_CYCLES=1000", "ZARVIK_CYCLES=40")
        .replace(/^(scripts\/fuzz\.sh).*/, "$1 --help");
}

const groups = /^ {2}([a-z]+) {2,}/gm;
const known = spawnSync("./test", ["--help"], { cwd: root, encoding: "utf8" }).stdout;
const knownGroups = [...known.matchAll(groups)].map(([, group]) => group);

const pages = ["README.md", ...readdirSync(join(root, "docs")).filter((name) => name.endsWith(".md")).sort().map((name) => `docs/${name}`)];
let count = 0;
for (const file of pages) {
    for (const shown of commandsOf(file)) {
        ++count;
        const command = runnable(shown);
        const needsWindows = /uwp-|setup-windows|assemble/.test(command) && !existsSync(join(root, "build/uwp-arm64/ZarvikOrvella.dll"));
        const needsSandbox = command.startsWith("bwrap") && process.env.WEBVIEW_SANDBOX === "off";
        test(`${file}: ${shown}`, { skip: (needsWindows && "Windows is not built") || (needsSandbox && "there is no sandbox here") }, () => {
            if (/^\.\/test\b/.test(command)) {
                // This is part of it. What it is called with must exist.
                for (const group of command.split(" ").slice(1)) {
                    assert.ok(knownGroups.includes(group), `there is no group ${group}`);
                }
                return;
            }
            const environment = { ...process.env };
            if (/\.\/run\b/.test(command)) {
                delete environment.DISPLAY; // or a window waits for its user
            }
            // Pictures go to the current folder, and the commands are those of the top folder.
            const result = spawnSync("bash", ["-c", command], { cwd: root, env: environment, encoding: "utf8", timeout: 300_000 });
            assert.equal(result.status, 0, `${command}\n${result.stdout}\n${result.stderr}`);
        });
    }
}

test("the documentation shows commands", () => assert.ok(count > 15 && knownGroups.length > 5));
