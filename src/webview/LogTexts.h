#pragma once

/// The log lines of the web view. Those that end in a blank are followed by details.
namespace log_texts {

inline constexpr const char* exceptionOnUIThread = "An exception occurred on the UI thread. ";
inline constexpr const char* exceptionWhile = "An exception occurred while ";
inline constexpr const char* noControl = " was ignored, because the native webview couldn't be created.";

inline constexpr const char* noHostPanel = "Unable to add the WebView instance to the XAML tree.";
inline constexpr const char* parentIsNoPanel =
    "Couldn't remove the native webview from the XAML tree because its parent isn't a panel.";
inline constexpr const char* zoomInDisabled =
    "IWebView.ZoomIn() was called, but ZoomIn() is disabled when running in native 2D mode.";
inline constexpr const char* zoomOutDisabled =
    "IWebView.ZoomOut() was called, but ZoomOut() is disabled when running in native 2D mode.";
inline constexpr const char* noSavedWindowContent =
    "UwpWebView::handleMixedRealityAppFocusChanged is unable to restore the window content because it is "
    "null";

inline constexpr const char* scriptThrew =
    "Just a heads-up: a script executed with ExecuteJavaScript() threw an error, which caused UWP's WebView "
    "to "
    "trigger a COMException (HRresult 0x80020101). When running in Visual Studio, this causes the debugger "
    "to "
    "pause execution, but you can safely resume execution by pressing the play button in the Visual Studio "
    "debugger.";
inline constexpr const char* scriptFailed =
    "An unexpected exception occurred while executing InvokeScriptAsync. HResult: ";
/// Not for the log: the engine gets it in place of the result.
inline constexpr const char* scriptResultMissing =
    "Error: An unexpected error occurred while executing the script with ExecuteJavaScript(). This can "
    "happen "
    "if ExecuteJavaScript() is called when the page isn't loaded yet. Please use "
    "IWebView.LoadProgressChanged to detect when the page has finished loading. For more info, please check "
    "the Unity player logs.";

inline constexpr const char* pageProcessLost =
    "The process of the page has ended unexpectedly. The page is loaded again.";
inline constexpr const char* pageProcessLostAgain =
    "The process of the page has ended unexpectedly, again within a minute. The page isn't loaded again.";

inline constexpr const char* loadFailed = "Page load failed with WebErrorStatus: ";
inline constexpr const char* localContentRefused = "A page isn't allowed to open the local content ";
inline constexpr const char* cannotLoadUrl = "Cannot load the URL ";
inline constexpr const char* invalidHeader = "The following header is invalid and will be ignored: ";

}  // namespace log_texts
