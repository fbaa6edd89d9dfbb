#pragma once

/// Follows the focus of the app's mixed-reality view: while it is lost, the window's content is taken away
/// and kept. UI thread.
void handleMixedRealityAppFocusChanged(bool focused);
