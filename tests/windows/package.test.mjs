// What `cmake --install` lays out for a Unity project, with both processors in one place.

import assert from "node:assert/strict";
import { existsSync, readFileSync, readdirSync, statSync } from "node:fs";
import { test } from "node:test";
import { built, root, run, withFolder } from "./builds.mjs";
import { PortableExecutable } from "./PortableExecutable.mjs";

const names = ["ZarvikOrvella", "ZarvikWebViewRuntimeComponent"];
const folders = { arm64: "ARM64", x64: "x64" };

// Present once the checkout has the viewer page; then the package must have them too.
const viewer = `${root}src/resources/pdf_viewer`;
const viewerNotices = existsSync(viewer) ? readdirSync(viewer).filter((name) => /^(LICENSE|NOTICE)/.test(name)) : [];

/** Whether a file with debug information is that of this image: both hold the identifier that the linker made. */
function belongTogether(image, debugFile) {
    const { identifier } = new PortableExecutable(readFileSync(image)).debugFile();
    return readFileSync(debugFile).includes(identifier);
}

test("the package has all that a project needs", () =>
    withFolder((folder) => {
        for (const architecture of Object.keys(folders))
            run("cmake", ["--install", built(architecture), "--prefix", folder]);

        const files = readdirSync(folder, { recursive: true }).filter((name) => statSync(`${folder}/${name}`).isFile());
        assert.deepEqual(
            files.sort(),
            [
                "include/ExportTable.inc",
                "include/ZarvikOrvella.h",
                ...["cppwinrt.txt", "llvm.txt", "mingw-w64.txt"].map((name) => `licenses/${name}`),
                ...viewerNotices.map((name) => `licenses/pdf.js/${name}`),
                ...Object.values(folders).flatMap((each) => [
                    ...names.map((name) => `Plugins/WSA/${each}/${name}.dll`),
                    `Plugins/WSA/${each}/ZarvikWebViewRuntimeComponent.winmd`,
                    ...names.map((name) => `symbols/${each}/${name}.pdb`),
                ]),
            ].sort(),
        );

        run("clang-19", ["-std=c11", "-fsyntax-only", "-x", "c", `${folder}/include/ZarvikOrvella.h`]);
        for (const [architecture, each] of Object.entries(folders))
            for (const name of names) {
                const image = `${folder}/Plugins/WSA/${each}/${name}.dll`;
                // An install that strips or patches would break the image's checksum and its tie to the symbols.
                assert.deepEqual(readFileSync(image), readFileSync(built(architecture, `${name}.dll`)), image);
                assert.equal(new PortableExecutable(readFileSync(image)).debugFile().name, `${name}.pdb`);
                assert.ok(belongTogether(image, `${folder}/symbols/${each}/${name}.pdb`), image);
                const other = names.find((another) => another !== name);
                assert.ok(!belongTogether(image, `${folder}/symbols/${each}/${other}.pdb`), image);
            }
    }));
