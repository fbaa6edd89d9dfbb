// The plug-in's DLL at work in an app and an engine: a real Direct3D 11 device, and app-side classes that do what a
// test tells them (app/).

import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { existsSync, mkdirSync, readFileSync, symlinkSync, writeFileSync } from "node:fs";
import { after, before, test } from "node:test";
import { built, root, run, startDisplay, wine, withFolder } from "./builds.mjs";

const sources = `${root}tests/windows/app`;
const program = `${root}build/windows-app`;
const linuxLibrary = `${root}build/linux/libZarvikOrvella.so`;

// A class is looked for in DLLs with the parts of its name, from the longest to the shortest. The shortest alone would
// do, but slowly.
const namespaces = [
    "", "ApplicationModel.Core", "Data.Json", "Foundation", "Graphics.Display", "Graphics.Imaging",
    "Networking.BackgroundTransfer", "Security.Cryptography", "Security.Cryptography.Core", "Storage", "Storage.Streams", "UI", "UI.ViewManagement", "UI.Xaml", "UI.Xaml.Controls", "UI.Xaml.Media",
    "UI.Xaml.Media.Imaging", "Web.Http", "Web.Http.Filters",
];

let screen;

before(async () => {
    run("cmake", [
        "-G", "Ninja", "-S", sources, "-B", program, "--toolchain", `${root}cmake/uwp-toolchain.cmake`,
        "-DZARVIK_UWP_ARCHITECTURE=x64", "-DCMAKE_BUILD_TYPE=Release",
    ]);
    run("cmake", ["--build", program, "-j2"]);
    screen = await startDisplay();
});

after(() => screen?.stop());

/** Calls `work` with the URL of a web server that has the document "paper.pdf" and nothing else. */
async function withServer(work) {
    const program = `require("http").createServer((request, response) => {
        const found = request.url === "/paper.pdf";
        response.writeHead(found ? 200 : 404, { "Content-Type": found ? "application/pdf" : "text/plain" });
        response.end(found ? "%PDF-1.4" : "");
    }).listen(0, "127.0.0.1", function () { console.log(this.address().port); })`;
    // In a process of its own, since this one waits for what it runs.
    const server = spawn(process.execPath, ["-e", program], { stdio: ["ignore", "pipe", "inherit"] });
    try {
        const [port] = await once(server.stdout, "data");
        return work(`http://127.0.0.1:${String(port).trim()}/`);
    } finally {
        server.kill();
    }
}

/** What the program printed while it played a scenario. */
function play(scenario) {
    return withFolder((folder) => {
        symlinkSync(`${program}/app.exe`, `${folder}/app.exe`);
        for (const name of namespaces)
            symlinkSync(`${program}/Windows.dll`, `${folder}/Windows${name && "."}${name}.dll`);
        for (const name of ["ZarvikOrvella.dll", "ZarvikWebViewRuntimeComponent.dll"])
            symlinkSync(built("x64", name), `${folder}/${name}`);
        const environment = {
            DISPLAY: screen.display,
            // Wine's own classes of these names do nothing yet.
            WINEDLLOVERRIDES: "cryptowinrt,windows.networking=d",
        };
        const { stdout } = wine([`${folder}/app.exe`, `Z:${folder}/ZarvikOrvella.dll`, scenario], environment);
        return stdout.replaceAll("\r\n", "\n");
    });
}

const expected = readFileSync(`${sources}/scenario.txt`, "utf8");

test("the engine hears the same as on Linux", () => {
    assert.equal(play("scenario"), expected);
});

test("Linux says what is expected", { skip: !existsSync(linuxLibrary) && "the Linux build is not there" }, () =>
    withServer((server) => withFolder((folder) => {
        mkdirSync(`${folder}/pages`);
        writeFileSync(`${folder}/pages/page.html`, "<title>page</title><p>page");
        run("clang++-19", [
            "-std=c++20", "-Wall", "-Wextra", "-Werror", `-I${root}src`, `-I${root}host/include`,
            `${sources}/linux.cpp`, `${sources}/Scenario.cpp`, `${root}host/src/Recorder.cpp`, `${root}host/src/Plugin.cpp`,
            "-o", `${folder}/linux`,
        ]);
        const environment = {
            DISPLAY: screen.display, NO_AT_BRIDGE: "1", XDG_DATA_HOME: `${folder}/data`, XDG_CACHE_HOME: `${folder}/cache`,
        };
        const { stdout } = run(`${folder}/linux`, [linuxLibrary, `file://${folder}/pages/`, server], environment);
        assert.equal(stdout, expected);
    })));

test("pages reach the engine's texture, whatever the engine does meanwhile", () => {
    assert.equal(play("rendering"), "");
});

test("whatever fails is logged, crashes nothing and is got over", () => {
    assert.equal(play("faults"), "");
});

// Of the ARM64 DLL only the structure is tested.
test.skip("the same with the ARM64 DLL: Wine for that processor overwrites a register that belongs to the system (x18)");
