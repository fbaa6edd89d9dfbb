#pragma once

/// The method names of host messages, as the engine knows them.
namespace messages {

inline constexpr const char* canGoBackResult = "HandleCanGoBackResult";
inline constexpr const char* canGoForwardResult = "HandleCanGoForwardResult";
inline constexpr const char* javaScriptResult = "HandleJavaScriptResult";
inline constexpr const char* loadFailed = "HandleLoadFailed";
inline constexpr const char* loadFinished = "HandleLoadFinished";
inline constexpr const char* loadProgressUpdate = "HandleLoadProgressUpdate";
inline constexpr const char* loadStarted = "HandleLoadStarted";
inline constexpr const char* messageEmitted = "HandleMessageEmitted";
inline constexpr const char* textureChanged = "HandleTextureChanged";

}  // namespace messages
