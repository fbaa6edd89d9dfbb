// node main.mjs PAGE.html [SOURCE.cpp DEPENDENCIES.d]
//
// Builds the viewer page.

import { embedText } from "../../../../cmake/embedText.mjs";
import { buildViewer } from "./build.mjs";

const pieceCount = 190;
const delimiter = "page";

/** A source that defines the page as pieces of about the same length. */
function cppSource(text) {
    if (text.includes(`)${delimiter}"`)) throw new Error("The page holds what ends a raw literal.");
    const length = Math.ceil(text.length / pieceCount);
    const pieces = Array.from({ length: pieceCount }, (_, i) => text.slice(i * length, (i + 1) * length));
    const literals = pieces.map((piece) => `    R"${delimiter}(${piece})${delimiter}"sv,\n`);
    return `#include "resources/PdfViewer.h"

using namespace std::string_view_literals;

constinit const std::array<std::string_view, ${pieceCount}> pdfViewerPieces{
${literals.join("")}};
`;
}

await embedText(buildViewer, cppSource);
