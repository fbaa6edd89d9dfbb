// Type-checks the sources and compiles them into one text, in which every module is registered under its path.

import path from "node:path";
import { fileURLToPath } from "node:url";
import ts from "typescript";
import { modules, prelude } from "./moduleTable.mjs";

const folder = path.dirname(path.dirname(fileURLToPath(import.meta.url)));

const formatHost = {
    getCanonicalFileName: (name) => name,
    getCurrentDirectory: () => folder,
    getNewLine: () => "\n",
};

function failOn(diagnostics) {
    if (diagnostics.length > 0) throw new Error(ts.formatDiagnostics(diagnostics, formatHost).trimEnd());
}

function compilerOptions() {
    const file = path.join(folder, "tsconfig.json");
    const { config, error } = ts.readConfigFile(file, ts.sys.readFile);
    failOn(error ? [error] : []);
    return ts.convertCompilerOptionsFromJson(config.compilerOptions, folder, file).options;
}

/** The compiled text, and the files that went into it. */
export function compile() {
    const names = [...prelude, ...modules.map(([name]) => name)];
    // The compiler writes the files in this order, except that a file stands after those that it imports. The globals
    // refer to modules, so they come last.
    const roots = [...names.map((name) => `${name}.ts`), "globals.d.ts"];
    const program = ts.createProgram(
        roots.map((name) => path.join(folder, name)),
        compilerOptions(),
    );
    failOn(ts.getPreEmitDiagnostics(program));

    let text;
    const result = program.emit(undefined, (name, data) => (text = data));
    failOn(result.diagnostics);
    const inputs = program
        .getSourceFiles()
        .map((source) => path.normalize(source.fileName))
        .filter((name) => !name.includes(`${path.sep}node_modules${path.sep}`));
    return { text, inputs };
}
