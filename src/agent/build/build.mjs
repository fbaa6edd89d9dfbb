// Builds the text of the in-page agent from its sources.

import { minify } from "terser";
import { checkHelpers, checkModules, checkText } from "./checks.mjs";
import { compile } from "./compile.mjs";
import { rootModule } from "./moduleTable.mjs";

/** Shortens local names and leaves out blanks and comments; the code stays as the compiler wrote it. */
async function shorten(text) {
    const { code } = await minify(text, {
        ecma: 5,
        compress: false,
        mangle: true,
        format: { ascii_only: true, comments: false, max_line_len: false, semicolons: true },
    });
    return code;
}

/** The agent's text, and the source files that went into it. */
export async function buildAgent() {
    const { text: compiled, inputs } = compile();
    checkModules(compiled);
    checkHelpers(compiled);
    const text = (await shorten(compiled)) + `System.require("${rootModule}");`;
    checkText(text);
    return { text, inputs };
}
