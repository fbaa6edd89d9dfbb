#pragma once

/// The log lines of the plug-in boundary. Those that end in a blank are followed by details.
namespace log_texts {

inline constexpr const char* versionInfo = "Using Zarvik Orvella for UWP v4.3.3";

inline constexpr const char* noSendMessageFunction =
    "Can't send message, because the _unitySendMessage function is NULL";
inline constexpr const char* noDataResultCallback =
    "Can't deliver a data result, because no data result callback is registered.";
inline constexpr const char* dataResultTooLarge =
    "Can't deliver a data result, because it is larger than 2 GB.";

inline constexpr const char* newFailed = "[WebView_new] An exception occurred while creating a new webview: ";
inline constexpr const char* newInNative2DModeFailed =
    "[WebView_newInNative2DMode] An exception occurred while creating a new webview: ";
inline constexpr const char* unknownException = "Unknown exception";

inline constexpr const char* exceptionIn = "An exception occurred in ";
inline constexpr const char* renderFailed = "An exception occurred while rendering. ";
inline constexpr const char* renderFailedUnknown = "An unknown exception occurred while rendering.";

inline constexpr const char* cookieFetchFailed = "An error occurred while fetching the cookies for ";
inline constexpr const char* cookieFetchFailedUnknown =
    "An unexpected error occurred while fetching the cookies for ";
inline constexpr const char* cookieSetFailed = "An error occurred while setting a cookie. Error message: ";
inline constexpr const char* cookieSetFailedUnknown = "An unexpected error occurred while setting a cookie.";
inline constexpr const char* cookieDeleteFailed = "An error occurred while deleting the cookies for ";
inline constexpr const char* cookieDeleteFailedUnknown =
    "An unexpected error occurred while deleting the cookies for ";
inline constexpr const char* errorMessage = ". Error message: ";

inline constexpr const char* userAgentSetFailed = "Setting the user agent failed with code: ";
inline constexpr const char* noDefaultUserAgent =
    "The default user agent can't be restored because it couldn't be read. Code: ";

}  // namespace log_texts
