#pragma once

#include <winrt/ZarvikWebViewRuntimeComponent.h>

namespace winrt::ZarvikWebViewRuntimeComponent::implementation {

/// The object that a page knows as `_zarvikBridge`. The native side makes it, listens to its event and gives
/// it to the page; the page calls `postMessage`. Reference-counted; every thread may use it, and a handler
/// runs on the thread that posts.
struct JavaScriptBridge
    : implements<JavaScriptBridge, winrt::ZarvikWebViewRuntimeComponent::IJavaScriptBridge> {
    /// The class, whose entry in the component's metadata tells the browser what the page may call.
    hstring GetRuntimeClassName() const override;

    void postMessage(hstring const& message);

    event_token MessageEmitted(MessageEmittedDelegate const& handler);
    void MessageEmitted(event_token const& token) noexcept;

  private:
    event<MessageEmittedDelegate> messageEmitted;
};

}  // namespace winrt::ZarvikWebViewRuntimeComponent::implementation

namespace winrt::ZarvikWebViewRuntimeComponent::factory_implementation {

/// Makes bridges for those who activate the class by its name.
struct JavaScriptBridge : implements<JavaScriptBridge, Windows::Foundation::IActivationFactory> {
    hstring GetRuntimeClassName() const override;

    Windows::Foundation::IInspectable ActivateInstance() const;
};

}  // namespace winrt::ZarvikWebViewRuntimeComponent::factory_implementation
