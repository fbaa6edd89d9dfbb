#include "webview/UIThread.h"

#include "exports/Exceptions.h"
#include "exports/HostChannel.h"
#include "webview/LogTexts.h"

using winrt::Windows::ApplicationModel::Core::CoreApplication;
using winrt::Windows::UI::Core::CoreDispatcher;
using winrt::Windows::UI::Core::CoreDispatcherPriority;

CoreDispatcher uiDispatcher() {
    return CoreApplication::MainView().Dispatcher();
}

void postToUIThread(std::function<void()> handler) {
    uiDispatcher().RunAsync(CoreDispatcherPriority::Normal, [handler = std::move(handler)] {
        try {
            handler();
        } catch (...) {
            logUIThreadException();
        }
    });
}

foundation::IAsyncAction pauseOnUIThread(std::chrono::milliseconds duration) {
    co_await winrt::resume_after(duration);
}

winrt::fire_and_forget launch(const char* purpose, foundation::IAsyncAction work) {
    try {
        co_await work;
    } catch (...) {
        logError(log_texts::exceptionWhile + std::string(purpose) + ". " + currentExceptionText());
    }
}

void logUIThreadException() {
    logError(log_texts::exceptionOnUIThread + currentExceptionText());
}
