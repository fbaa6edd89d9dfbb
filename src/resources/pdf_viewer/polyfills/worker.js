import "./language.js";
import "./ReadableStream.js";
import "./TextDecoder.js";
