#pragma once

#include <chrono>
#include <functional>

#include "platform.h"

/// The app's UI thread, the one of the main view's dispatcher, on which every XAML object lives.

winrt::Windows::UI::Core::CoreDispatcher uiDispatcher();

/// Queues a handler for the UI thread and returns without waiting; handlers posted by one thread run in the
/// order posted. What escapes the handler is logged. Throws if the dispatcher takes no handlers.
void postToUIThread(std::function<void()> handler);

/// Lets the UI thread do other work for this long. What awaits it there continues there, without the
/// dispatcher, which may be taking no work.
foundation::IAsyncAction pauseOnUIThread(std::chrono::milliseconds duration);

/// Lets a coroutine run that nobody waits for. What escapes it is logged as a failure of its purpose.
winrt::fire_and_forget launch(const char* purpose, foundation::IAsyncAction work);

/// Logs the exception being handled, which ended a handler on the UI thread.
void logUIThreadException();
