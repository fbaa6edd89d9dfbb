// The predefined character maps: without them, most documents in Chinese, Japanese or Korean that embed no fonts show
// no text.

import { readFileSync } from "node:fs";
import path from "node:path";
import { folder } from "./bundle.mjs";

/** Those that every reader of PDF has to know, and what they are made of. Left out: UTF-8 and UTF-32, hardly used. */
const names = `
    GB-EUC-H GB-EUC-V GBpc-EUC-H GBpc-EUC-V GBK-EUC-H GBK-EUC-V GBKp-EUC-H GBKp-EUC-V GBK2K-H GBK2K-V
    UniGB-UCS2-H UniGB-UCS2-V UniGB-UTF16-H UniGB-UTF16-V
    B5pc-H B5pc-V HKscs-B5-H HKscs-B5-V ETen-B5-H ETen-B5-V ETenms-B5-H ETenms-B5-V CNS-EUC-H CNS-EUC-V
    UniCNS-UCS2-H UniCNS-UCS2-V UniCNS-UTF16-H UniCNS-UTF16-V
    83pv-RKSJ-H 90ms-RKSJ-H 90ms-RKSJ-V 90msp-RKSJ-H 90msp-RKSJ-V 90pv-RKSJ-H Add-RKSJ-H Add-RKSJ-V EUC-H EUC-V
    Ext-RKSJ-H Ext-RKSJ-V H V
    UniJIS-UCS2-H UniJIS-UCS2-V UniJIS-UCS2-HW-H UniJIS-UCS2-HW-V UniJIS-UTF16-H UniJIS-UTF16-V
    KSC-EUC-H KSC-EUC-V KSCms-UHC-H KSCms-UHC-V KSCms-UHC-HW-H KSCms-UHC-HW-V KSCpc-EUC-H
    UniKS-UCS2-H UniKS-UCS2-V UniKS-UTF16-H UniKS-UTF16-V
    Adobe-GB1-UCS2 Adobe-CNS1-UCS2 Adobe-Japan1-UCS2 Adobe-Korea1-UCS2
`
    .trim()
    .split(/\s+/);

/** Lines of "name=base64", each between two line ends. */
export function cMapLines() {
    const file = (name) => path.join(folder, "node_modules/pdfjs-dist/cmaps", `${name}.bcmap`);
    const line = (name) => `${name}=${readFileSync(file(name)).toString("base64").replace(/=+$/, "")}`;
    return ["", ...names.map(line), ""].join("\n");
}
