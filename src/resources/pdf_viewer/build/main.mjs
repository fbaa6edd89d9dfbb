// node main.mjs PAGE.html [SOURCE.cpp DEPENDENCIES.d]
//
// Builds the viewer page and writes it, and for the plug-in's build a C++ source that holds it in pieces and the list
// of files that it was made from.

import { mkdirSync, writeFileSync } from "node:fs";
import path from "node:path";
import { buildViewer } from "./build.mjs";

const pieceCount = 190;
const delimiter = "page";

/** A source that defines the page as pieces of about the same length. */
function cppSource(text) {
    if (text.includes(`)${delimiter}"`)) throw new Error("The page holds what ends a raw literal.");
    const length = Math.ceil(text.length / pieceCount);
    const pieces = Array.from({ length: pieceCount }, (_, i) => text.slice(i * length, (i + 1) * length));
    const literals = pieces.map((piece) => `    R"${delimiter}(${piece})${delimiter}"sv,\n`);
    return `#include "resources/PdfViewer.h"

using namespace std::string_view_literals;

constinit const std::array<std::string_view, ${pieceCount}> pdfViewerPieces{
${literals.join("")}};
`;
}

function makeRule(target, inputs) {
    const escape = (name) => name.replaceAll(/[ #]/g, "\\$&").replaceAll("$", "$$$$");
    return `${escape(target)}: ${inputs.map(escape).join(" ")}\n`;
}

function write(file, content) {
    mkdirSync(path.dirname(path.resolve(file)), { recursive: true });
    writeFileSync(file, content);
}

const [pageFile, sourceFile, dependencyFile] = process.argv.slice(2);
try {
    if (!pageFile || (sourceFile && !dependencyFile))
        throw new Error("usage: node main.mjs PAGE.html [SOURCE.cpp DEPENDENCIES.d]");
    const { text, inputs } = await buildViewer();
    write(pageFile, text);
    if (sourceFile) {
        write(sourceFile, cppSource(text));
        write(dependencyFile, makeRule(sourceFile, inputs));
    }
} catch (error) {
    console.error(error.message);
    process.exitCode = 1;
}
