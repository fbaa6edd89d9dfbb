// Uses the component as a browser and as the plug-in do: main COMPONENT.dll BRIDGE_ID DELEGATE_ID
// The identifiers come from the component's metadata. Prints each failed check; ends with their number.

#include <unknwn.h>

#include <winrt/ZarvikWebViewRuntimeComponent.h>

#include <activation.h>
#include <winstring.h>

#include <atomic>
#include <cstdio>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

using Messages = std::vector<std::wstring>;

constexpr auto className = L"ZarvikWebViewRuntimeComponent.JavaScriptBridge";

int failures = 0;

void check(bool right, char const* what) {
    if (!right) {
        std::printf("FAILED: %s\n", what);
        ++failures;
    }
}

/// The interfaces as the metadata has them, apart from the projection that the component is made with.
struct Bridge : IInspectable {
    virtual HRESULT __stdcall postMessage(HSTRING message) = 0;
    virtual HRESULT __stdcall add_MessageEmitted(IUnknown* handler, winrt::event_token* token) = 0;
    virtual HRESULT __stdcall remove_MessageEmitted(winrt::event_token token) = 0;
};

struct Delegate : IUnknown {
    virtual HRESULT __stdcall Invoke(HSTRING message) = 0;
};

/// A handler that keeps what it is told.
class Recorder final : public Delegate {
  public:
    explicit Recorder(GUID const& identifier) : identifier(identifier) {}

    Messages messages;
    std::thread::id thread;
    std::atomic<ULONG> references = 1;

    HRESULT __stdcall QueryInterface(REFIID wanted, void** found) override {
        const bool mine =
            wanted == __uuidof(IUnknown) || wanted == __uuidof(IAgileObject) || wanted == identifier;
        *found = mine ? this : nullptr;
        return mine ? (AddRef(), S_OK) : E_NOINTERFACE;
    }
    ULONG __stdcall AddRef() override { return ++references; }
    ULONG __stdcall Release() override { return --references; }
    HRESULT __stdcall Invoke(HSTRING message) override {
        UINT32 length = 0;
        auto const* characters = WindowsGetStringRawBuffer(message, &length);
        messages.emplace_back(characters, length);
        thread = std::this_thread::get_id();
        return S_OK;
    }

  private:
    GUID identifier;
};

HRESULT post(winrt::com_ptr<Bridge> const& bridge, std::wstring_view text) {
    return bridge->postMessage(static_cast<HSTRING>(winrt::get_abi(winrt::hstring(text))));
}

winrt::com_ptr<Bridge> activate(HMODULE library, GUID const& bridgeId) {
    const auto getFactory = reinterpret_cast<HRESULT(__stdcall*)(HSTRING, IActivationFactory**)>(
        GetProcAddress(library, "DllGetActivationFactory"));
    winrt::com_ptr<IActivationFactory> factory;
    const winrt::hstring other(L"ZarvikWebViewRuntimeComponent.Other");
    check(
        getFactory(static_cast<HSTRING>(winrt::get_abi(other)), factory.put()) == CLASS_E_CLASSNOTAVAILABLE &&
            !factory,
        "a class that is not there has no factory");

    const winrt::hstring name(className);
    winrt::check_hresult(getFactory(static_cast<HSTRING>(winrt::get_abi(name)), factory.put()));
    winrt::com_ptr<IInspectable> object;
    winrt::check_hresult(factory->ActivateInstance(object.put()));

    winrt::hstring objectName;
    object->GetRuntimeClassName(reinterpret_cast<HSTRING*>(winrt::put_abi(objectName)));
    check(objectName == className, "the object names its class, by which the browser finds its metadata");
    winrt::com_ptr<IUnknown> agile;
    check(object->QueryInterface(__uuidof(IAgileObject), agile.put_void()) == S_OK, "the object is agile");
    winrt::com_ptr<Bridge> bridge;
    winrt::check_hresult(object->QueryInterface(bridgeId, bridge.put_void()));
    return bridge;
}

/// As a browser does, which knows the metadata only.
void useByMetadata(HMODULE library, GUID const& bridgeId, GUID const& delegateId) {
    const auto canUnload =
        reinterpret_cast<HRESULT(__stdcall*)()>(GetProcAddress(library, "DllCanUnloadNow"));
    check(canUnload() == S_OK, "it can be unloaded before it is used");
    Recorder first(delegateId);
    Recorder second(delegateId);
    {
        const auto bridge = activate(library, bridgeId);
        check(canUnload() == S_FALSE, "it cannot be unloaded while an object lives");
        check(post(bridge, L"nobody listens") == S_OK, "a message without handler is lost in peace");

        winrt::event_token firstToken{};
        winrt::event_token secondToken{};
        winrt::check_hresult(bridge->add_MessageEmitted(&first, &firstToken));
        winrt::check_hresult(bridge->add_MessageEmitted(&second, &secondToken));
        const std::wstring text(L"{\"text\":\"\u00fc\u4e16\xd83d\xde00\"}\0rest", 20);
        check(post(bridge, text) == S_OK, "a message is delivered");
        check(post(bridge, L"") == S_OK, "an empty message is a message");
        check(first.messages == Messages{text, L""}, "a handler gets the texts as they are");
        check(second.messages == first.messages, "every handler gets them");

        std::thread([&] { post(bridge, L"elsewhere"); }).join();
        check(second.messages == Messages{text, L"", L"elsewhere"} &&
                  second.thread != std::this_thread::get_id(),
              "the handler runs on the thread that posts");

        winrt::check_hresult(bridge->remove_MessageEmitted(firstToken));
        post(bridge, L"for the second");
        check(first.messages.size() == 3 && second.messages.size() == 4, "a removed handler hears no more");
    }
    check(first.references == 1 && second.references == 1, "no handler is kept");
    check(canUnload() == S_OK, "it can be unloaded again");
}

/// The projection that the plug-in is compiled with has to give its handlers the same identifier.
void checkProjection(GUID const& delegateId) {
    const winrt::ZarvikWebViewRuntimeComponent::MessageEmittedDelegate handler([](winrt::hstring const&) {});
    winrt::com_ptr<::IUnknown> found;
    auto* const unknown = static_cast<::IUnknown*>(winrt::get_abi(handler));
    check(unknown->QueryInterface(delegateId, found.put_void()) == S_OK,
          "the handler has the delegate's identifier");
}

}  // namespace

int wmain(int count, wchar_t** arguments) try {
    if (count != 4) {
        return 2;
    }
    winrt::init_apartment();
    const HMODULE library = LoadLibraryW(arguments[1]);
    winrt::check_pointer(library);
    const winrt::guid bridgeId(std::wstring_view{arguments[2]});
    const winrt::guid delegateId(std::wstring_view{arguments[3]});
    useByMetadata(library, bridgeId, delegateId);
    checkProjection(delegateId);
    std::printf("%d checks failed\n", failures);
    return failures;
} catch (winrt::hresult_error const& error) {
    std::printf("FAILED: %08x\n", static_cast<unsigned>(error.code()));
    return 1;
}
