#pragma once

#include <memory>
#include <string>

#include "platform.h"

class UwpWebView;

/// Requests for one picture of the page, answered through the data-result callback with their id. They may be
/// started on any thread, work on the UI thread, and look at the page itself, whether or not it is captured
/// for a texture. A request that fails or whose web view is destroyed ends without an answer.

/// Answers with a PNG image.
foundation::IAsyncAction captureScreenshot(std::shared_ptr<UwpWebView> view, std::string resultCallbackId);

/// Answers with the pixels as the engine's textures store them: BGRA8, bottom row first.
foundation::IAsyncAction getRawTextureData(std::shared_ptr<UwpWebView> view, std::string resultCallbackId);
