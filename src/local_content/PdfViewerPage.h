#pragma once

#include <string>
#include <string_view>

/// The viewer page for the document at a URL, as UTF-8. Bytes that no URL holds are percent-encoded on the
/// way, so that the URL cannot be anything else in the page. Any thread.
std::string pdfViewerPage(std::string_view pdfUrl);
