import "./language.js";
import "./ReadableStream.js";
import "./canvas.js";
import "./ResizeObserver.js";
