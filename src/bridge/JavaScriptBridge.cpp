#include "JavaScriptBridge.h"

namespace winrt::ZarvikWebViewRuntimeComponent::implementation {

hstring JavaScriptBridge::GetRuntimeClassName() const {
    return hstring{name_of<winrt::ZarvikWebViewRuntimeComponent::JavaScriptBridge>()};
}

void JavaScriptBridge::postMessage(hstring const& message) {
    messageEmitted(message);
}

event_token JavaScriptBridge::MessageEmitted(MessageEmittedDelegate const& handler) {
    return messageEmitted.add(handler);
}

void JavaScriptBridge::MessageEmitted(event_token const& token) noexcept {
    messageEmitted.remove(token);
}

}  // namespace winrt::ZarvikWebViewRuntimeComponent::implementation

namespace winrt::ZarvikWebViewRuntimeComponent::factory_implementation {

hstring JavaScriptBridge::GetRuntimeClassName() const {
    return hstring{name_of<winrt::ZarvikWebViewRuntimeComponent::JavaScriptBridge>()};
}

Windows::Foundation::IInspectable JavaScriptBridge::ActivateInstance() const {
    return make<implementation::JavaScriptBridge>();
}

}  // namespace winrt::ZarvikWebViewRuntimeComponent::factory_implementation
