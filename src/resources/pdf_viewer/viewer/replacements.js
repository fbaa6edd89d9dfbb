// What the bundler puts in the place of names in the sources of PDF.js.

import check from "pdfjs-dist/web/images/annotation-check.svg";
import comment from "pdfjs-dist/web/images/annotation-comment.svg";
import help from "pdfjs-dist/web/images/annotation-help.svg";
import insert from "pdfjs-dist/web/images/annotation-insert.svg";
import key from "pdfjs-dist/web/images/annotation-key.svg";
import newparagraph from "pdfjs-dist/web/images/annotation-newparagraph.svg";
import noicon from "pdfjs-dist/web/images/annotation-noicon.svg";
import note from "pdfjs-dist/web/images/annotation-note.svg";
import paperclip from "pdfjs-dist/web/images/annotation-paperclip.svg";
import paragraph from "pdfjs-dist/web/images/annotation-paragraph.svg";
import pushpin from "pdfjs-dist/web/images/annotation-pushpin.svg";

const icons = { check, comment, help, insert, key, newparagraph, noicon, note, paperclip, paragraph, pushpin };

export { UnicodeRegExp as RegExp } from "../polyfills/RegExp.js";

/** The picture of an annotation, inside the page. */
export const annotationIcon = (name) => icons[name.toLowerCase()] || icons.note;

/** Stands where PDF.js would make code out of text. It asks beforehand whether that works. */
export function refuseEvaluation() {
    throw new EvalError("The viewer makes no code out of text.");
}

/** Runs the worker's text in the page, which defines `pdfjsWorker`. */
export function runWorkerHere() {
    const script = document.createElement("script");
    script.textContent = document.getElementById("workerText").textContent;
    document.head.appendChild(script);
    script.remove();
    if (!self.pdfjsWorker) throw new Error("The worker does not run in the page.");
}
