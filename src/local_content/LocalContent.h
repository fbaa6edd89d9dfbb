#pragma once

#include <string>

class UwpWebView;

/// The pages that do not come from the network: local files and PDF documents. UI thread.
namespace local_content {

/// Shows the local file behind a "file:" URL.
void loadFile(UwpWebView& view, const std::string& url);

/// Shows a PDF document, local or from the network.
void loadPdf(UwpWebView& view, const std::string& url);

}  // namespace local_content
