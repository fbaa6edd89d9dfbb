#pragma once

#include <array>
#include <string_view>

/// The text of the PDF viewer page: one HTML document with its scripts and styles. The build makes it from
/// pdf_viewer and cuts it into pieces, to be joined in order. It holds `$PDF_URL_PLACEHOLDER` where the
/// viewer reads the document's URL.
extern const std::array<std::string_view, 190> pdfViewerPieces;
