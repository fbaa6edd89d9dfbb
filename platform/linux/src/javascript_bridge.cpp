#include <winrt/ZarvikWebViewRuntimeComponent.h>

#include "implementation.h"
#include "page_object.h"

namespace winrt::ZarvikWebViewRuntimeComponent {

namespace {

struct bridge_object : runtime::page_object {
    std::vector<std::string> methods() const override { return {"postMessage"}; }
    void call(size_t, hstring const& text) override { message_emitted(text); }

    event<MessageEmittedDelegate> message_emitted;
};

}  // namespace

JavaScriptBridge::JavaScriptBridge() : IInspectable(std::make_shared<bridge_object>()) {}

event_token JavaScriptBridge::MessageEmitted(MessageEmittedDelegate const& handler) const {
    return runtime::implementation_of<bridge_object>(*this)->message_emitted.add(handler);
}

void JavaScriptBridge::MessageEmitted(event_token const& token) const noexcept {
    runtime::implementation_of<bridge_object>(*this)->message_emitted.remove(token);
}

void JavaScriptBridge::postMessage(param::hstring const& message) const {
    runtime::implementation_of<bridge_object>(*this)->message_emitted(message.value);
}

}  // namespace winrt::ZarvikWebViewRuntimeComponent
