// The viewer page: shows the PDF document whose URL the page holds.

import "../polyfills/page.js";
import { documentUrl, fileNameOf, isAllowed } from "./documentUrl.js";
import { Viewer } from "./Viewer.js";

const url = documentUrl();
const viewer = new Viewer(fileNameOf(url));
if (isAllowed(url)) viewer.open(url);
else viewer.showMessage("This document cannot be opened", "Its address is not one that the viewer opens.");
