// node main.mjs TEXT [SOURCE.cpp DEPENDENCIES.d]
//
// Builds the agent and writes its text, and for the plug-in's build a C++ source that defines it and the list of files
// that it was made from.

import { mkdirSync, writeFileSync } from "node:fs";
import path from "node:path";
import { buildAgent } from "./build.mjs";

/** A source that defines the text as string literals that no compiler finds too long. */
function cppSource(text) {
    const pieces = text.match(/.{1,100}/g).map((piece) => `    "${piece.replaceAll(/["\\]/g, "\\$&")}"`);
    return `#include "agent/AgentScript.h"

static constexpr char text[] =
${pieces.join("\n")};

constinit const std::string_view agentScript{text, sizeof text - 1};
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

const [textFile, sourceFile, dependencyFile] = process.argv.slice(2);
try {
    if (!textFile || (sourceFile && !dependencyFile))
        throw new Error("usage: node main.mjs TEXT [SOURCE.cpp DEPENDENCIES.d]");
    const { text, inputs } = await buildAgent();
    write(textFile, text);
    if (sourceFile) {
        write(sourceFile, cppSource(text));
        write(dependencyFile, makeRule(sourceFile, inputs));
    }
} catch (error) {
    console.error(error.message);
    process.exitCode = 1;
}
