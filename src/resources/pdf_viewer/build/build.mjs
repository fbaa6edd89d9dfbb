// Builds the viewer page: one HTML text with everything in it.

import { createHash } from "node:crypto";
import { readFileSync } from "node:fs";
import path from "node:path";
import { bundleStyle, bundleViewer, bundleWorker, folder } from "./bundle.mjs";
import { checkPage, checkScript } from "./checks.mjs";
import { cMapLines } from "./cMaps.mjs";

const hash = (text) => `'sha256-${createHash("sha256").update(text).digest("base64")}'`;

/**
 * The page runs its own two scripts and asks for local documents; nothing else is allowed. Evaluation is, for the host:
 * an engine may hold the host's scripts to the page's policy. The page's own scripts evaluate nothing, see checks.mjs.
 */
function policy(...scripts) {
    return [
        "default-src 'none'",
        `script-src 'unsafe-eval' ${scripts.map(hash).join(" ")}`,
        "worker-src blob:",
        "child-src blob:", // what older engines read instead of worker-src
        "connect-src ms-local-stream:",
        "style-src 'unsafe-inline'",
        "img-src data: blob:",
        "font-src data:",
        "base-uri 'none'",
        "form-action 'none'",
    ].join("; ");
}

/**
 * A script as the content of its element: what would begin something else there, and control characters. Both are in
 * literals only, where the escapes mean the same.
 */
function inline(script) {
    return script
        .replaceAll(/<(?=!--|\/?script)/gi, "\\x3C")
        .replaceAll(/[^\x20-\x7e\n]/g, (character) => `\\x${character.charCodeAt(0).toString(16).padStart(2, "0")}`);
}

/** The page's text, and the source files that went into it. */
export async function buildViewer() {
    const [viewer, worker, style] = await Promise.all([bundleViewer(), bundleWorker(), bundleStyle()]);
    const viewerText = inline(viewer.text);
    const workerText = inline(worker.text);
    checkScript("viewer", viewerText);
    checkScript("worker", workerText);

    const parts = {
        POLICY: policy(viewerText, workerText),
        STYLE: style.text,
        NOTICE: readFileSync(path.join(folder, "NOTICE"), "utf8").trim().replaceAll("\n", "\n             "),
        CMAPS: cMapLines(),
        WORKER: workerText,
        VIEWER: viewerText,
    };
    const page = readFileSync(path.join(folder, "page.html"), "utf8")
        .replaceAll(/^ +/gm, "")
        .replaceAll(/\$(POLICY|STYLE|NOTICE|CMAPS|WORKER|VIEWER)\b/g, (_, name) => parts[name]);
    checkPage(page);

    const own = ["page.html", "NOTICE"].concat([viewer, worker, style].flatMap(({ inputs }) => inputs));
    const inputs = [...new Set(own)].filter((name) => !name.startsWith("node_modules/") && !name.includes(":"));
    return { text: page, inputs: inputs.map((name) => path.join(folder, name)) };
}
