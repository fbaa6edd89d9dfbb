// Scripts that run in the page, and messages that come from it.

#include <new>

#include "exports/HostChannel.h"
#include "exports/HostMessages.h"
#include "webview/LogTexts.h"
#include "webview/PageScripts.h"
#include "webview/UwpWebView.h"

using winrt::Windows::Graphics::Display::DisplayInformation;
using winrt::ZarvikWebViewRuntimeComponent::JavaScriptBridge;

namespace {

constexpr const char* transparencyMessage = "zarvik.webview.pageTransparencyDetermined";
constexpr const char* framesNeedAgentMessage = "zarvik.webview.uwp.iframesNeedBrowserAgent";

/// The platform's failure code for a script that threw.
constexpr auto scriptThrew = static_cast<std::int32_t>(0x80020101);

void logScriptFailure(const winrt::hresult_error& error) {
    const auto code = static_cast<std::int32_t>(error.code());
    if (code == scriptThrew) {
        logInfo(log_texts::scriptThrew);
    } else {
        logError(log_texts::scriptFailed + std::to_string(code) +
                 ", message: " + winrt::to_string(error.message()));
    }
}

}  // namespace

void UwpWebView::executeJavaScript(std::string script, const std::string& resultCallbackId) {
    try {
        postToUIThread([weak = weak_from_this(), script = std::move(script), resultCallbackId] {
            if (const auto view = weak.lock(); view && !view->destroyed) {
                view->runScript(script, resultCallbackId);
            }
        });
    } catch (...) {
        // Whoever waits for the answer gets one all the same.
        if (!resultCallbackId.empty()) {
            sendMessage(messages::javaScriptResult, resultCallbackId + "," + log_texts::scriptResultMissing);
        }
        throw;
    }
}

void UwpWebView::runScript(const std::string& script, const std::string& resultCallbackId) {
    launch("executing a script",
           invokeScript(shared_from_this(), winrt::to_hstring(script), resultCallbackId));
}

foundation::IAsyncAction UwpWebView::invokeScript(std::shared_ptr<UwpWebView> view, winrt::hstring script,
                                                  std::string resultCallbackId) {
    const bool answers = !resultCallbackId.empty();
    std::string result = log_texts::scriptResultMissing;
    if (view->hasControl("executeJavaScript")) {
        try {
            const auto text =
                co_await view->webView.InvokeScriptAsync(answers ? L"_evalToString" : L"eval", {script});
            result = winrt::to_string(text);
        } catch (const winrt::hresult_error& error) {
            // With its view a script ends as well, and nobody needs to hear of it.
            if (!view->destroyed) {
                logScriptFailure(error);
            }
        } catch (const std::bad_alloc&) {
            // What C++/WinRT makes of one of the platform's codes; the engine is told all the same.
            if (!view->destroyed) {
                logUIThreadException();
            }
        }
    }
    if (answers && !view->destroyed) {
        view->sendMessage(messages::javaScriptResult, resultCallbackId + "," + result);
    }
}

void UwpWebView::addPageBridge() {
    try {
        const JavaScriptBridge bridge;
        bridge.MessageEmitted([weak = weak_from_this()](const winrt::hstring& message) {
            if (const auto view = weak.lock(); view && !view->destroyed) {
                view->onPageMessage(winrt::to_string(message));
            }
        });
        webView.AddWebAllowedObject(L"_zarvikBridge", bridge);
    } catch (...) {
        // The page can be shown without it.
        logUIThreadException();
    }
}

void UwpWebView::injectPageScripts() {
    frameAgents = std::make_shared<FrameAgents>();
    // Before the options are read: whoever changes one too late for that sees it, and sends a script.
    agentRunning = true;
    runScript(std::string(page_scripts::evaluationHelper), "");
    runScript(page_scripts::agentStart(consoleMessageEventsEnabled, focusedInputFieldEventsEnabled,
                                       DisplayInformation::GetForCurrentView().RawPixelsPerViewPixel()),
              "");
    runScript(std::string(page_scripts::frameWatcher), "");
}

/// The starter is long and what asks for it is short, so there is only one under way: a page that asks as
/// fast as it can would have thousands wait for it, in the memory of the engine. One that starts later serves
/// all who asked before.
foundation::IAsyncAction UwpWebView::startFrameAgents(std::shared_ptr<UwpWebView> view) {
    const auto frames = view->frameAgents;
    frames->wanted = true;
    if (std::exchange(frames->starting, true)) {
        co_return;
    }
    while (frames->wanted && frames == view->frameAgents && !view->destroyed) {
        frames->wanted = false;
        co_await invokeScript(view, winrt::to_hstring(page_scripts::frameAgentStarter()), {});
    }
    frames->starting = false;
}

void UwpWebView::onPageMessage(const std::string& message) {
    if (message.find(transparencyMessage) != std::string::npos) {
        applyBackground(!defaultBackgroundEnabled || message.find("true") != std::string::npos);
    } else if (message == framesNeedAgentMessage) {
        launch("starting the agent in frames", startFrameAgents(shared_from_this()));
    } else {
        sendMessage(messages::messageEmitted, message);
    }
}

void UwpWebView::applyBackground(bool transparent) {
    using winrt::Windows::UI::Colors;
    webView.DefaultBackgroundColor(transparent ? Colors::Transparent() : Colors::White());
    if (!transparent) {
        runScript(page_scripts::setDefaultBackground, "");
    }
}

void UwpWebView::setConsoleMessageEventsEnabled(bool enabled) {
    consoleMessageEventsEnabled = enabled;
    executeJavaScript(page_scripts::setConsoleMessageEventsEnabled(enabled), "");
}

void UwpWebView::setFocusedInputFieldEventsEnabled(bool enabled) {
    focusedInputFieldEventsEnabled = enabled;
    // The agent cannot stop watching: switching off waits for the next page.
    if (enabled && agentRunning) {
        executeJavaScript(page_scripts::enableFocusedInputFieldEvents, "");
    }
}
