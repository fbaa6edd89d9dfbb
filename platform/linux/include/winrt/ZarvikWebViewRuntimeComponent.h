#pragma once

#include <winrt/Windows.Foundation.h>

namespace winrt::ZarvikWebViewRuntimeComponent {

struct MessageEmittedDelegate : delegate<hstring> {
    using delegate::delegate;
};

/// An object for pages: `postMessage(text)` raises an event on the native side. Any thread.
struct JavaScriptBridge : Windows::Foundation::IInspectable {
    JavaScriptBridge();
    WINRT_LINUX_HANDLE(JavaScriptBridge, IInspectable)

    event_token MessageEmitted(MessageEmittedDelegate const& handler) const;
    void MessageEmitted(event_token const& token) const noexcept;

    void postMessage(param::hstring const& message) const;
};

}  // namespace winrt::ZarvikWebViewRuntimeComponent
