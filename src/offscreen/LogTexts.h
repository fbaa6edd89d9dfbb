#pragma once

/// The log lines of offscreen rendering. Those that end in a blank are followed by details.
namespace log_texts {

inline constexpr const char* captureFailed = "An error occurred while capturing the page. ";

inline constexpr const char* noEngineDevice =
    "The engine's Direct3D 11 device is not available, so the page can't be rendered into a texture.";
inline constexpr const char* textureCreationFailed = "Texture creation failed with code: ";
inline constexpr const char* viewCreationFailed = "Shader resource creation failed with code: ";
inline constexpr const char* textureQueryFailed = "Getting the texture failed with error code: ";
inline constexpr const char* destroyQueryFailed =
    "[UwpWebView::destroyTexture] QueryInterface failed with error code: ";
inline constexpr const char* mapFailed = "[UwpWebView::render] ID3D11DeviceContext::Map failed with result: ";

inline constexpr const char* screenshotWithoutSize =
    "Can't capture a screenshot, because the web view has no size.";
inline constexpr const char* rawDataWithoutSize =
    "Can't get the raw texture data, because the web view has no size.";

}  // namespace log_texts
