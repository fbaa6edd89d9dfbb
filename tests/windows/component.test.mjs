// The component with the object that pages post to: its metadata, which the browser reads, and its DLL at work.

import assert from "node:assert/strict";
import { readFileSync, writeFileSync } from "node:fs";
import { before, test } from "node:test";
import { built, cache, compile, root, run, wine, withFolder } from "./builds.mjs";

const component = "ZarvikWebViewRuntimeComponent";
const source = `${root}src/bridge/${component}.idl`;
const architectures = ["arm64", "x64"];

const environment = { DOTNET_CLI_TELEMETRY_OPTOUT: "1", DOTNET_NOLOGO: "1" };
const readerFolder = `${root}build/windows-metadata`;

/** The types in a metadata file. */
function typesOf(file) {
    return JSON.parse(run("dotnet", [`${readerFolder}/bin/metadata/debug/metadata.dll`, file], environment).stdout);
}

/** What a component must tell the browser about itself: all that a .winmd has, for these identifiers. */
function expectedTypes({ bridge, delegate }) {
    const meta = (name) => `Windows.Foundation.Metadata.${name}Attribute`;
    const members = [
        "Void postMessage(String)",
        `Windows.Foundation.EventRegistrationToken add_MessageEmitted(${component}.MessageEmittedDelegate)`,
        "Void remove_MessageEmitted(Windows.Foundation.EventRegistrationToken)",
    ];
    return {
        [`${component}.MessageEmittedDelegate`]: {
            parent: "System.MulticastDelegate",
            windowsRuntime: true,
            attributes: { [meta("Guid")]: delegate, [meta("Version")]: "1" },
            interfaces: {},
            methods: ["Void .ctor(Object, IntPtr)", "Void Invoke(String)"],
            events: [],
        },
        // The order of the methods is that of the virtual table.
        [`${component}.IJavaScriptBridge`]: {
            parent: null,
            windowsRuntime: true,
            attributes: {
                [meta("ExclusiveTo")]: `${component}.JavaScriptBridge`,
                [meta("Guid")]: bridge,
                [meta("Version")]: "1",
            },
            interfaces: {},
            methods: members,
            events: ["MessageEmitted"],
        },
        [`${component}.JavaScriptBridge`]: {
            parent: "System.Object",
            windowsRuntime: true,
            attributes: {
                [meta("Activatable")]: "1",
                [meta("AllowForWeb")]: "",
                [meta("MarshalingBehavior")]: "2", // agile
                [meta("Threading")]: "3", // both
                [meta("Version")]: "1",
            },
            interfaces: { [`${component}.IJavaScriptBridge`]: { [meta("Default")]: "" } },
            methods: ["Void .ctor()", ...members],
            events: ["MessageEmitted"],
        },
    };
}

const makeMetadata = (idl, metadata) => run(`${root}cmake/windows/sdk.sh`, ["metadata", idl, metadata]);

function identifiersOf(types) {
    const guid = (name) => types[`${component}.${name}`].attributes["Windows.Foundation.Metadata.GuidAttribute"];
    return { bridge: guid("IJavaScriptBridge"), delegate: guid("MessageEmittedDelegate") };
}

/** An identifier as it stands in memory: its first three numbers are little-endian. */
function bytesOf(identifier) {
    const bytes = Buffer.from(identifier.replaceAll("-", ""), "hex");
    for (const [start, end] of [[0, 4], [4, 6], [6, 8]])
        bytes.subarray(start, end).reverse();
    return bytes;
}

before(() => {
    const project = `${root}tests/windows/metadata`;
    run("dotnet", ["build", project, "--artifacts-path", readerFolder, "-v", "quiet"], environment);
});

for (const architecture of architectures)
    test(`the metadata is right and speaks of the DLLs beside it (${architecture})`, () => {
        const types = typesOf(built(architecture, `${component}.winmd`));
        const identifiers = identifiersOf(types);
        assert.deepEqual(types, expectedTypes(identifiers));
        for (const name of [component, "ZarvikOrvella"]) {
            const dll = readFileSync(built(architecture, `${name}.dll`));
            for (const [what, identifier] of Object.entries(identifiers))
                assert.ok(dll.includes(bytesOf(identifier)), `${name}.dll does not know the ${what} as ${identifier}`);
        }
    });

test("metadata that says something else is noticed", () => {
    const identifiers = identifiersOf(typesOf(built("x64", `${component}.winmd`)));
    const idl = readFileSync(source, "utf8");
    const changes = {
        "closed to pages": [/\[Windows\.Foundation\.Metadata\.AllowForWeb\]/, ""],
        "another method": ["postMessage", "PostMessage"],
        "another order": [/(void postMessage.*\n)\s*(event .*\n)/, "$2$1"],
        "another identifier": ["8C3D5B70", "8C3D5B71"],
        "not agile": ["marshaling_behavior(agile)", "marshaling_behavior(standard)"],
        "not activatable": ["JavaScriptBridge();", ""],
    };
    withFolder((folder) => {
        for (const [what, [from, to]] of Object.entries(changes)) {
            const changed = idl.replace(from, to);
            assert.notEqual(changed, idl, what);
            writeFileSync(`${folder}/${component}.idl`, changed);
            const metadata = `${folder}/${component}.winmd`;
            makeMetadata(`${folder}/${component}.idl`, metadata);
            assert.notDeepEqual(typesOf(metadata), expectedTypes(identifiers), what);
        }

        writeFileSync(`${folder}/${component}.idl`, idl.replace("String message", "Strin message"));
        assert.throws(
            () => makeMetadata(`${folder}/${component}.idl`, `${folder}/none.winmd`),
            /unresolved type declaration/,
        );
    });
});

test("the DLL does what its metadata says", () =>
    withFolder((folder) => {
        const program = `${folder}/main.exe`;
        compile(
            "-municode", "-Wall", "-Wextra", "-Werror",
            "-DUNICODE", "-D_UNICODE", "-DNOMINMAX", "-DWIN32_LEAN_AND_MEAN",
            "-isystem", `${cache}/windows/include`, `-I${root}src/bridge/projection`,
            `${root}tests/windows/component/main.cpp`,
            `${cache}/windows/sdk/cpp.x64/um/x64/WindowsApp.lib`, "-o", program,
        );
        const { bridge, delegate } = identifiersOf(typesOf(built("x64", `${component}.winmd`)));
        const use = (...identifiers) =>
            wine([program, `Z:${built("x64", `${component}.dll`)}`, ...identifiers]).stdout.trim();
        assert.equal(use(bridge, delegate), "0 checks failed");

        const other = "00000000-0000-0000-0000-000000000001";
        assert.throws(() => use(other, delegate), /FAILED: 80004002/);
        assert.throws(() => use(bridge, other), /FAILED: the handler has the delegate's identifier/);
    }));
