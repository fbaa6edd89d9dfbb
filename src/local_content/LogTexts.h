#pragma once

/// The log lines of local content, each followed by details.
namespace log_texts {

inline constexpr const char* unsupportedLocalUrl =
    "FileUriToStreamResolver is unable to resolve the unsupported URL ";
inline constexpr const char* cannotLoadLocalFile =
    "An error occurred while trying to load a local file with LoadUrl(). Error message: ";

inline constexpr const char* unsupportedPdfScheme = "Cannot load PDF URL with unsupported scheme: ";
inline constexpr const char* pdfDownload = "The download of the PDF from ";
inline constexpr const char* pdfDownloadFailed = "An error occurred while trying to download the PDF from ";
inline constexpr const char* pdfDownloadFailedUnexpectedly =
    "An unexpected error occurred while trying to download the PDF from ";
inline constexpr const char* cannotDiscardDownload = "Couldn't remove the unfinished download ";
inline constexpr const char* cannotShowPdf = "Cannot show the PDF from ";

}  // namespace log_texts
