// The worker's script. It also runs in the page, where no worker can be had, and then leaves its entrance there.

import "../polyfills/worker.js";
import * as pdfjsWorker from "pdfjs-dist/build/pdf.worker.js";

self.pdfjsWorker = pdfjsWorker;
