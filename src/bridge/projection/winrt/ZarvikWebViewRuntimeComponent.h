#pragma once

/// The component's types in C++/WinRT, by hand and in the form in which its tool generates them, since that
/// tool exists on Windows alone. For those who use the component and for the one who implements it.

#include <winrt/Windows.Foundation.h>

namespace winrt::ZarvikWebViewRuntimeComponent {

struct IJavaScriptBridge;
struct JavaScriptBridge;
struct MessageEmittedDelegate;

}  // namespace winrt::ZarvikWebViewRuntimeComponent

namespace winrt::impl {

namespace component = winrt::ZarvikWebViewRuntimeComponent;

// The identifiers of the component's .idl.
template <>
inline constexpr guid guid_v<component::IJavaScriptBridge>{
    0x8C3D5B70, 0x42AF, 0x4D19, {0xA6, 0xE2, 0x1F, 0x94, 0xB0, 0x5C, 0x7D, 0x68}};
template <>
inline constexpr guid guid_v<component::MessageEmittedDelegate>{
    0x5E1F8A36, 0x0C64, 0x4E0B, {0x9B, 0x1D, 0x7A, 0x52, 0xC8, 0xD4, 0xE9, 0x13}};

template <>
struct category<component::IJavaScriptBridge> {
    using type = interface_category;
};
template <>
struct category<component::JavaScriptBridge> {
    using type = class_category;
};
template <>
struct category<component::MessageEmittedDelegate> {
    using type = delegate_category;
};

template <>
inline constexpr auto& name_v<component::IJavaScriptBridge> =
    L"ZarvikWebViewRuntimeComponent.IJavaScriptBridge";
template <>
inline constexpr auto& name_v<component::JavaScriptBridge> =
    L"ZarvikWebViewRuntimeComponent.JavaScriptBridge";
template <>
inline constexpr auto& name_v<component::MessageEmittedDelegate> =
    L"ZarvikWebViewRuntimeComponent.MessageEmittedDelegate";

template <>
struct default_interface<component::JavaScriptBridge> {
    using type = component::IJavaScriptBridge;
};

template <>
struct abi<component::IJavaScriptBridge> {
    struct WINRT_IMPL_NOVTABLE type : inspectable_abi {
        virtual int32_t __stdcall postMessage(void* message) noexcept = 0;
        virtual int32_t __stdcall add_MessageEmitted(void* handler, winrt::event_token* token) noexcept = 0;
        virtual int32_t __stdcall remove_MessageEmitted(winrt::event_token token) noexcept = 0;
    };
};
template <>
struct abi<component::MessageEmittedDelegate> {
    struct WINRT_IMPL_NOVTABLE type : unknown_abi {
        virtual int32_t __stdcall Invoke(void* message) noexcept = 0;
    };
};

/// The members of the interface, for itself and for the classes that have it.
template <typename D>
struct consume_IJavaScriptBridge {
    auto postMessage(param::hstring const& message) const {
        check_hresult(self()->postMessage(*(void**)(&message)));
    }
    auto MessageEmitted(component::MessageEmittedDelegate const& handler) const {
        winrt::event_token token{};
        check_hresult(self()->add_MessageEmitted(*(void**)(&handler), put_abi(token)));
        return token;
    }
    using MessageEmitted_revoker = event_revoker<component::IJavaScriptBridge,
                                                 &abi_t<component::IJavaScriptBridge>::remove_MessageEmitted>;
    [[nodiscard]] auto MessageEmitted(auto_revoke_t, component::MessageEmittedDelegate const& handler) const {
        return make_event_revoker<D, MessageEmitted_revoker>(this, MessageEmitted(handler));
    }
    auto MessageEmitted(winrt::event_token const& token) const noexcept {
        self()->remove_MessageEmitted(bind_in(token));
    }

  private:
    /// The class and its interface are the same pointer, since it is the default interface.
    auto self() const { return *(abi_t<component::IJavaScriptBridge>**)static_cast<D const*>(this); }
};
template <>
struct consume<component::IJavaScriptBridge> {
    template <typename D>
    using type = consume_IJavaScriptBridge<D>;
};

template <typename D>
struct produce<D, component::IJavaScriptBridge> : produce_base<D, component::IJavaScriptBridge> {
    int32_t __stdcall postMessage(void* message) noexcept final try {
        typename D::abi_guard guard(this->shim());
        this->shim().postMessage(*reinterpret_cast<hstring const*>(&message));
        return 0;
    } catch (...) {
        return to_hresult();
    }
    int32_t __stdcall add_MessageEmitted(void* handler, winrt::event_token* token) noexcept final try {
        zero_abi<winrt::event_token>(token);
        typename D::abi_guard guard(this->shim());
        *token = detach_from<winrt::event_token>(this->shim().MessageEmitted(
            *reinterpret_cast<component::MessageEmittedDelegate const*>(&handler)));
        return 0;
    } catch (...) {
        return to_hresult();
    }
    int32_t __stdcall remove_MessageEmitted(winrt::event_token token) noexcept final {
        typename D::abi_guard guard(this->shim());
        this->shim().MessageEmitted(*reinterpret_cast<winrt::event_token const*>(&token));
        return 0;
    }
};

}  // namespace winrt::impl

namespace winrt::ZarvikWebViewRuntimeComponent {

struct WINRT_IMPL_EMPTY_BASES IJavaScriptBridge : winrt::Windows::Foundation::IInspectable,
                                                  impl::consume_t<IJavaScriptBridge> {
    IJavaScriptBridge(std::nullptr_t = nullptr) noexcept {}
    IJavaScriptBridge(void* ptr, take_ownership_from_abi_t) noexcept
        : winrt::Windows::Foundation::IInspectable(ptr, take_ownership_from_abi) {}
};

struct MessageEmittedDelegate : winrt::Windows::Foundation::IUnknown {
    MessageEmittedDelegate(std::nullptr_t = nullptr) noexcept {}
    MessageEmittedDelegate(void* ptr, take_ownership_from_abi_t) noexcept
        : winrt::Windows::Foundation::IUnknown(ptr, take_ownership_from_abi) {}
    template <typename L>
    MessageEmittedDelegate(L handler);
    auto operator()(param::hstring const& message) const {
        check_hresult((*(impl::abi_t<MessageEmittedDelegate>**)this)->Invoke(*(void**)(&message)));
    }
};

struct WINRT_IMPL_EMPTY_BASES JavaScriptBridge : IJavaScriptBridge {
    JavaScriptBridge(std::nullptr_t) noexcept {}
    JavaScriptBridge(void* ptr, take_ownership_from_abi_t) noexcept
        : IJavaScriptBridge(ptr, take_ownership_from_abi) {}
    JavaScriptBridge()
        : JavaScriptBridge(impl::call_factory_cast<JavaScriptBridge (*)(
                                                       winrt::Windows::Foundation::IActivationFactory const&),
                                                   JavaScriptBridge>(
              [](winrt::Windows::Foundation::IActivationFactory const& factory) {
                  return factory.template ActivateInstance<JavaScriptBridge>();
              })) {}
};

}  // namespace winrt::ZarvikWebViewRuntimeComponent

namespace winrt::impl {

template <typename H>
struct delegate<component::MessageEmittedDelegate, H> final
    : implements_delegate<component::MessageEmittedDelegate, H> {
    delegate(H&& handler)
        : implements_delegate<component::MessageEmittedDelegate, H>(std::forward<H>(handler)) {}

    int32_t __stdcall Invoke(void* message) noexcept final try {
        (*this)(*reinterpret_cast<hstring const*>(&message));
        return 0;
    } catch (...) {
        return to_hresult();
    }
};

}  // namespace winrt::impl

namespace winrt::ZarvikWebViewRuntimeComponent {

template <typename L>
MessageEmittedDelegate::MessageEmittedDelegate(L handler)
    : MessageEmittedDelegate(impl::make_delegate<MessageEmittedDelegate>(std::forward<L>(handler))) {}

}  // namespace winrt::ZarvikWebViewRuntimeComponent
