// What the builds of the embedded texts share: the in-page agent's and the PDF viewer page's.

import { mkdirSync, writeFileSync } from "node:fs";
import path from "node:path";

/** A rule of make's: the target was made from the inputs. */
function makeRule(target, inputs) {
    const escape = (name) => name.replaceAll(/[ #]/g, "\\$&").replaceAll("$", "$$$$");
    return `${escape(target)}: ${inputs.map(escape).join(" ")}\n`;
}

function write(file, content) {
    mkdirSync(path.dirname(path.resolve(file)), { recursive: true });
    writeFileSync(file, content);
}

/**
 * Runs the build of a text as the command line says: TEXT [SOURCE.cpp DEPENDENCIES.d]. Writes the text, and for the
 * plug-in's build a C++ source that holds it and the list of files that it was made from.
 *
 * @param {() => Promise<{ text: string, inputs: string[] }>} build the text and the files read for it
 * @param {(text: string) => string} cppSource the C++ source
 */
export async function embedText(build, cppSource) {
    const [textFile, sourceFile, dependencyFile] = process.argv.slice(2);
    try {
        if (!textFile || (sourceFile && !dependencyFile))
            throw new Error("usage: node main.mjs TEXT [SOURCE.cpp DEPENDENCIES.d]");
        const { text, inputs } = await build();
        write(textFile, text);
        if (sourceFile) {
            write(sourceFile, cppSource(text));
            write(dependencyFile, makeRule(sourceFile, inputs));
        }
    } catch (error) {
        console.error(error.message);
        process.exitCode = 1;
    }
}
