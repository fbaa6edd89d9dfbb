#pragma once

#include <map>
#include <string>
#include <string_view>

#include "platform.h"

/// How local content is addressed: the control opens only "ms-local-stream:" URLs, the engine knows only the
/// ones that it asked for.
namespace local_urls {

/// Where downloaded documents came from, by the 32 characters of their file names.
using PdfSources = std::map<std::string, std::string, std::less<>>;

/// The file name, without its ending, under which the document of a URL is kept: always the same.
std::string pdfFileName(const std::string& url);

/// The page that is the file of a "file:" URL.
foundation::Uri page(const controls::WebView& control, const foundation::Uri& fileUrl);
/// The viewer page for the document at a path, whose separators may be slashes.
foundation::Uri pdfViewer(const controls::WebView& control, const winrt::hstring& path);

/// The URL that the engine asked for, from the one that the control opened. Others stay as they are.
std::string toReport(const std::string& url, const PdfSources& pdfSources);

}  // namespace local_urls
