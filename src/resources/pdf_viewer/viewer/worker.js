// The worker of PDF.js. The page holds its text once, as data. Where it cannot run as a worker, PDF.js calls
// `runWorkerHere` to have it in the page.

import { GlobalWorkerOptions } from "pdfjs-dist";
import { byId } from "./dom.js";

export function prepareWorker() {
    GlobalWorkerOptions.workerSrc = URL.createObjectURL(
        new Blob([byId("workerText").textContent], { type: "text/javascript" }),
    );
}
