#include "webview/MixedRealityFocus.h"

#include "exports/HostChannel.h"
#include "platform.h"
#include "webview/LogTexts.h"

void handleMixedRealityAppFocusChanged(bool focused) {
    struct SavedContent {
        xaml::UIElement element{nullptr};
    };
    // Never destroyed: at the end of the process the UI thread that owns the content is gone.
    static auto& saved = *new SavedContent;

    const auto window = xaml::Window::Current();
    if (!window) {
        throw winrt::hresult_error(E_FAIL, L"The UI thread has no XAML window.");
    }
    if (!focused) {
        saved.element = window.Content();
        window.Content(nullptr);
    } else if (saved.element) {
        window.Content(saved.element);
        saved.element = nullptr;
    } else {
        logError(log_texts::noSavedWindowContent);
    }
}
