#!/usr/bin/env node
// Puts what src/exports/ExportTable.inc says of each function into docs/exports.md, between its two marks.
//
//   exports-reference.mjs           writes it
//   exports-reference.mjs --check   exit code 1 if it is not what would be written

import { readFileSync, writeFileSync } from "node:fs";
import { fileURLToPath } from "node:url";

const root = fileURLToPath(new URL("..", import.meta.url));
const page = `${root}docs/exports.md`;
const begin = "<!-- functions: made by scripts/exports-reference.mjs -->\n";
const end = "<!-- end of functions -->\n";

/** Without comment marks, as one line. */
const prose = (lines) => lines.map((line) => line.replace(/^\/\/\/? ?/, "")).join(" ");

const named = (text) => text.replace(/(?<!`)\b(WebView_\w+|Handle[A-Z]\w+|messageTargetName|resultCallbackId)\b(?!`)/g, "`$1`");

function describe(table) {
    // The first block is about the table itself.
    const blocks = table.trim().split("\n\n").slice(1);
    return blocks.map((block) => {
        const lines = block.split("\n");
        if (!lines[0].startsWith("///")) {
            return `### ${prose(lines.slice(0, 1))}\n${lines.length > 1 ? `\n${named(prose(lines.slice(1)))}\n` : ""}`;
        }
        const comment = lines.filter((line) => line.startsWith("///"));
        const [, result, name, parameters] = /^ZARVIK_EXPORT\((.*?), (\w+),\s*\((.*)\)\)$/s.exec(lines.slice(comment.length).join(" "));
        return `#### ${name}\n\n\`\`\`c\n${result} ${name}(${parameters.replace(/\s+/g, " ")});\n\`\`\`\n\n${named(prose(comment))}\n`;
    }).join("\n");
}

const text = readFileSync(page, "utf8");
const from = text.indexOf(begin) + begin.length;
const to = text.indexOf(end);
if (from < begin.length || to < from) {
    console.error(`${page} has lost its marks.`);
    process.exit(1);
}
const made = `${text.slice(0, from)}\n${describe(readFileSync(`${root}src/exports/ExportTable.inc`, "utf8"))}\n${text.slice(to)}`;
if (!process.argv.includes("--check")) {
    writeFileSync(page, made);
} else if (made !== text) {
    console.error("docs/exports.md does not fit src/exports/ExportTable.inc: run scripts/exports-reference.mjs");
    process.exit(1);
}
