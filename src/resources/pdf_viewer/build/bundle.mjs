// Bundles the scripts and the style, each into one text that EdgeHTML 18 reads.

import path from "node:path";
import { fileURLToPath } from "node:url";
import { build } from "esbuild-wasm";
import { pdfjsSources } from "./sources.mjs";

export const folder = path.dirname(path.dirname(fileURLToPath(import.meta.url)));

async function bundle(entry, options = {}) {
    const { outputFiles, metafile } = await build({
        absWorkingDir: folder,
        entryPoints: [entry],
        bundle: true,
        write: false,
        metafile: true,
        minify: true,
        target: "edge18",
        legalComments: "none",
        loader: { ".svg": "dataurl", ".gif": "dataurl" },
        plugins: [pdfjsSources],
        logLevel: "error",
        ...options,
    });
    return { text: outputFiles[0].text.trim(), inputs: Object.keys(metafile.inputs) };
}

const script = (entry) =>
    bundle(entry, {
        format: "iife",
        inject: ["viewer/replacements.js"],
        define: { process: "undefined" },
    });

export const bundleViewer = () => script("viewer/main.js");
export const bundleWorker = () => script("viewer/workerMain.js");
export const bundleStyle = () => bundle("viewer/style.css");
