// What the Windows Runtime slice must refuse, beside what it must allow instead. The file compiles as it
// stands. With one of the macros that it tests defined, a line is exchanged, and the compiler must refuse it:
//
//   refused_...   on both sides: the real C++/WinRT refuses it too
//   absent_...    here only: the platform has it, the slice has not, and lacks it openly
//
// check.sh compiles it in each of these ways, without warnings: unused names are no reason to refuse
// anything.

#include "platform.h"

#include <span>

namespace {

using foundation::IAsyncAction;
using foundation::IAsyncOperation;
using winrt::hstring;

// Texts
// -------------------------------------------------------------------------------------------------------------

void textArguments(const hstring& text, const std::wstring& standard, std::wstring_view part) {
    const foundation::Uri literal(L"https://a.example/");
    const foundation::Uri fromText(text);
    const foundation::Uri fromStandard(standard);
    const foundation::Uri fromPart(part);
    controls::WebView(nullptr).NavigateToString({text});
    controls::WebView(nullptr).NavigateToString({L"<p>"});
    http::HttpCookie(L"name", standard, text).Value(part);
#ifdef refused_narrow_literal_as_text
    controls::WebView(nullptr).NavigateToString("<p>");
#endif
#ifdef refused_utf8_as_text
    controls::WebView(nullptr).NavigateToString(std::string("<p>"));
#endif
#ifdef refused_null_as_text_argument
    controls::WebView(nullptr).NavigateToString(nullptr);
#endif
#ifdef refused_text_as_uri
    controls::WebView(nullptr).Navigate(L"https://a.example/");
#else
    controls::WebView(nullptr).Navigate(foundation::Uri(L"https://a.example/"));
#endif
}

void textResults(const hstring& text) {
    const std::wstring_view view = text;
#ifdef refused_text_becomes_wstring
    const std::wstring standard = text;
#else
    const std::wstring standard(text);
#endif
#ifdef refused_text_becomes_string
    const std::string narrow = text;
#else
    const std::string narrow = winrt::to_string(text);
#endif
#ifdef refused_wstring_becomes_text
    const hstring back = standard;
#else
    const hstring back(standard);
#endif
#ifdef refused_view_becomes_text
    const hstring part = view;
#else
    const hstring part(view);
#endif
#ifdef refused_null_text
    const hstring null = nullptr;
#else
    const hstring null;
#endif
#ifdef refused_text_element_changed
    *text.begin() = L'a';
#endif
#ifdef refused_text_appended_to
    hstring(text) += L"a";
#endif
#ifdef refused_text_to_string_from_narrow
    (void)winrt::to_string("a");
#else
    (void)winrt::to_string(L"a");
#endif
    (void)(text == L"a" && back == part && null < text);
}

// Handles
// -----------------------------------------------------------------------------------------------------------

void handles(const controls::WebView& view, const xaml::DependencyObject& object) {
    const xaml::UIElement base = view;
    const foundation::IInspectable inspectable = view;
    const controls::WebView null{nullptr};
    controls::Panel panel = nullptr;
    panel = nullptr;
    (void)(view == base && null == nullptr && object != nullptr && inspectable == base);
#ifdef refused_base_becomes_derived
    panel = object;
#else
    panel = object.try_as<controls::Panel>();
#endif
#ifdef refused_base_made_into_derived
    const controls::WebView made(object);
#else
    const auto made = object.as<controls::WebView>();
#endif
#ifdef refused_sibling_conversion
    panel = view;
#endif
#ifdef refused_handle_becomes_bool
    const bool exists = panel;
#else
    const bool exists = static_cast<bool>(panel);
#endif
#ifdef refused_handle_becomes_number
    (void)(view + 1);
#endif
#ifdef refused_default_of_abstract_type
    const xaml::DependencyObject parent;
#else
    const xaml::DependencyObject parent = view.Parent();
#endif
#ifdef refused_argument_of_wrong_type
    panel.Children().Append(object);
#else
    panel.Children().Append(view);
#endif
    (void)exists;
    winrt::weak_ref<controls::WebView> weak = winrt::make_weak(view);
#ifdef refused_weak_reference_becomes_handle
    const controls::WebView strong = weak;
#else
    const controls::WebView strong = weak.get();
#endif
}

void values(const http::HttpCookie& cookie, const foundation::Uri& uri) {
    cookie.Expires(winrt::clock::from_time_t(0));
    cookie.Expires(nullptr);
    const foundation::IReference<foundation::DateTime> expires = cookie.Expires();
#ifdef refused_missing_value_becomes_value
    const foundation::DateTime time = expires;
#else
    const foundation::DateTime time = expires.Value();
#endif
#ifdef refused_number_as_time
    cookie.Expires(std::time_t{0});
#endif
#ifdef refused_system_time_as_time
    const foundation::DateTime now = std::chrono::system_clock::now();
#else
    const foundation::DateTime now = winrt::clock::now();
#endif
    (void)(time < now);
#ifdef refused_number_as_enumerator
    controls::WebView(nullptr).Visibility(1);
#else
    controls::WebView(nullptr).Visibility(xaml::Visibility::Collapsed);
#endif
#ifdef refused_enumerator_becomes_number
    const std::int32_t status = winrt::Windows::Web::WebErrorStatus::Unknown;
#else
    const auto status = static_cast<std::int32_t>(winrt::Windows::Web::WebErrorStatus::Unknown);
#endif
    (void)status;
#ifdef refused_read_only_property_set
    uri.AbsoluteUri(L"https://a.example/");
#else
    (void)uri.AbsoluteUri();
#endif
#ifdef refused_wrong_json_value
    json::JsonArray().Append(1.0);
#else
    json::JsonArray().Append(json::JsonValue::CreateNumberValue(1.0));
#endif
#ifdef refused_static_class_made
    const winrt::Windows::ApplicationModel::Core::CoreApplication application;
#endif
}

// Arrays
// ------------------------------------------------------------------------------------------------------------

void arrays(const imaging::PixelDataProvider& provider, const imaging::BitmapEncoder& encoder,
            const streams::DataReader& reader) {
    winrt::com_array<std::uint8_t> pixels = provider.DetachPixelData();
#ifdef refused_array_copied
    const winrt::com_array<std::uint8_t> other = pixels;
#else
    const winrt::com_array<std::uint8_t> other = std::move(pixels);
#endif
    const std::span<const std::uint8_t> bytes(other.data(), other.size());
#ifdef refused_array_assigned
    pixels = other;
#else
    pixels = provider.DetachPixelData();
#endif
    const std::vector<std::uint8_t> constant(bytes.begin(), bytes.end());
    std::vector<std::uint8_t> target(4);
    encoder.SetPixelData(imaging::BitmapPixelFormat::Bgra8, imaging::BitmapAlphaMode::Premultiplied, 1, 1, 96,
                         96, constant);
#ifdef refused_read_into_constant
    reader.ReadBytes(constant);
#else
    reader.ReadBytes(target);
#endif
#ifdef refused_elements_of_other_type
    std::vector<std::uint16_t> wide(4);
    reader.ReadBytes(wide);
#endif
}

// Events and delegates
// ----------------------------------------------------------------------------------------------

struct Events {
    void onStarting(const controls::WebView&, const controls::WebViewNavigationStartingEventArgs&) {}
};

void handlers(const controls::WebView& view, const winrt::Windows::UI::Core::CoreDispatcher& queue) {
    using winrt::Windows::UI::Core::CoreDispatcherPriority;
    const winrt::event_token token = view.NavigationStarting(
        [](const controls::WebView&, const controls::WebViewNavigationStartingEventArgs& args) {
            args.Cancel(true);
        });
    view.ContentLoading([](const auto&, const auto&) {});
    view.ContentLoading([](const foundation::IInspectable&, const foundation::IInspectable&) {});
#ifdef refused_handler_with_fewer_parameters
    view.ContentLoading([](const controls::WebView&) {});
#endif
#ifdef refused_handler_of_another_event
    view.ContentLoading(
        [](const controls::WebView&, const controls::WebViewNavigationCompletedEventArgs&) {});
#endif
#ifdef refused_handler_that_changes_its_arguments
    view.ContentLoading([](controls::WebView&, const controls::WebViewContentLoadingEventArgs&) {});
#endif
#ifdef refused_token_becomes_number
    const std::int64_t number = token;
#else
    const std::int64_t number = token.value;
#endif
    (void)number;
    queue.RunAsync(CoreDispatcherPriority::Normal, [] {});
    queue.RunAsync(CoreDispatcherPriority::Normal, [count = 0]() mutable { return ++count; });
#ifdef refused_work_with_parameters
    queue.RunAsync(CoreDispatcherPriority::Normal, [](int) {});
#endif
#ifdef refused_work_without_priority
    queue.RunAsync([] {});
#endif
#ifdef refused_work_called_by_number
    queue.RunAsync(1, [] {});
#endif
}

// Asynchrony
// --------------------------------------------------------------------------------------------------------

IAsyncOperation<streams::IBuffer> makeBuffer(xaml::Media::Imaging::RenderTargetBitmap bitmap) {
    co_return co_await bitmap.GetPixelsAsync();
}

IAsyncOperation<bool> answer() {
    co_return true;
}

IAsyncAction results(streams::InMemoryRandomAccessStream stream) {
    const streams::IBuffer buffer = co_await makeBuffer({});
    auto decided = co_await answer();
    auto decoder = co_await imaging::BitmapDecoder::CreateAsync(stream);
    static_assert(std::is_same_v<decltype(decided), bool>);
    static_assert(std::is_same_v<decltype(decoder), imaging::BitmapDecoder>);
    const std::uint32_t loaded = co_await streams::DataReader(stream.GetInputStreamAt(0)).LoadAsync(1);
    (void)(buffer && loaded);
#ifdef refused_operation_as_its_result
    const streams::IBuffer unfinished = makeBuffer({});
#endif
#ifdef refused_result_of_other_type
    const streams::InMemoryRandomAccessStream other = co_await makeBuffer({});
#endif
#ifdef refused_result_of_action
    const bool nothing = co_await winrt::Windows::UI::Xaml::Controls::WebView::ClearTemporaryWebDataAsync();
#endif
}

#ifdef refused_operation_of_string
IAsyncOperation<std::string> standardText() {
    co_return std::string();
}
#else
IAsyncOperation<hstring> standardText() {
    co_return hstring();
}
#endif

#ifdef refused_operation_of_wstring
IAsyncOperation<std::wstring> standardWideText() {
    co_return std::wstring();
}
#endif

#ifdef refused_operation_of_vector
IAsyncOperation<std::vector<std::uint8_t>> standardArray() {
    co_return {};
}
#endif

#ifdef refused_operation_of_pointer
IAsyncOperation<void*> pointer() {
    co_return nullptr;
}
#endif

struct Own {
    std::shared_ptr<int> member;
};

#ifdef refused_operation_of_own_type
IAsyncOperation<Own> own() {
    co_return Own{};
}
#endif

#ifdef refused_operation_of_nothing
IAsyncOperation<void> nothing() {
    co_return;
}
#else
IAsyncAction nothing() {
    co_return;
}
#endif

winrt::fire_and_forget threads(winrt::Windows::UI::Core::CoreDispatcher queue) {
    using namespace std::chrono_literals;
    co_await winrt::resume_background();
    co_await winrt::resume_after(10ms);
    co_await winrt::resume_foreground(queue);
#ifdef refused_number_as_delay
    co_await winrt::resume_after(10);
#endif
#ifdef refused_queue_awaited
    co_await queue.RunAsync;
#endif
#ifdef refused_fire_and_forget_awaited
    co_await threads(queue);
#endif
#ifdef refused_fire_and_forget_with_result
    co_return true;
#endif
}

#ifdef refused_action_with_result
IAsyncAction actionWithResult() {
    co_return true;
}
#endif

#ifdef refused_operation_without_result
IAsyncOperation<bool> operationWithoutResult() {
    co_return;
}
#endif

// Pages
// -------------------------------------------------------------------------------------------------------------

IAsyncAction pages(controls::WebView view, hstring text, std::wstring standard) {
    using winrt::ZarvikWebViewRuntimeComponent::JavaScriptBridge;
    const hstring one = co_await view.InvokeScriptAsync(L"eval", {text});
    const hstring several = co_await view.InvokeScriptAsync(standard, {text, L"a", hstring(standard)});
    const hstring none = co_await view.InvokeScriptAsync(text, nullptr);
    const hstring list = co_await view.InvokeScriptAsync(text, std::vector<hstring>{text});
    (void)(one == several && none == list);
#ifdef refused_script_result_as_standard_text
    const std::wstring result = co_await view.InvokeScriptAsync(L"eval", {text});
#endif
#ifdef refused_standard_text_as_script_argument
    co_await view.InvokeScriptAsync(L"eval", {standard});
#endif
#ifdef refused_utf8_as_script_argument
    co_await view.InvokeScriptAsync(L"eval", {std::string("1")});
#endif
#ifdef refused_script_argument_outside_of_a_list
    co_await view.InvokeScriptAsync(L"eval", text);
#endif
#ifdef refused_call_without_a_list
    co_await view.InvokeScriptAsync(L"eval");
#endif
#ifdef refused_list_that_stays
    const std::vector<hstring> kept{text};
    co_await view.InvokeScriptAsync(L"eval", kept);
#endif
    const JavaScriptBridge bridge;
    const JavaScriptBridge null{nullptr};
    const winrt::event_token token = bridge.MessageEmitted([](const hstring& message) { (void)message; });
    bridge.MessageEmitted([](winrt::hstring message) { (void)message; });
    bridge.MessageEmitted(token);
    bridge.postMessage(L"text");
    bridge.postMessage(standard);
    view.AddWebAllowedObject(L"bridge", bridge);
#ifdef refused_handler_of_standard_text
    bridge.MessageEmitted([](const std::wstring& message) { (void)message; });
#endif
#ifdef refused_handler_of_message_without_parameters
    bridge.MessageEmitted([] {});
#endif
#ifdef refused_text_as_object_for_pages
    view.AddWebAllowedObject(L"bridge", L"text");
#endif
    view.DefaultBackgroundColor({0, 0, 0, 0});
    view.DefaultBackgroundColor(winrt::Windows::UI::Colors::Transparent());
    const winrt::Windows::UI::Color color = view.DefaultBackgroundColor();
    (void)(color == winrt::Windows::UI::Colors::White());
#ifdef refused_number_as_color
    view.DefaultBackgroundColor(0xFFFFFFFF);
#endif
}

// Errors
// ------------------------------------------------------------------------------------------------------------

void errors(const winrt::hresult_error& error) {
    const winrt::hresult code = error.code();
    const std::int32_t number = error.code();
    const hstring message = error.message();
    (void)winrt::hresult_error(E_FAIL, L"text");
    (void)winrt::hresult_error(code);
    (void)number;
#ifdef refused_error_as_standard_exception
    const std::exception& standard = error;
#endif
#ifdef refused_number_thrown_as_error
    const winrt::hresult_error converted = E_FAIL;
#else
    const winrt::hresult_error converted(E_FAIL);
#endif
}

// COM pointers
// ------------------------------------------------------------------------------------------------------

void pointers(IUnknown* plain) {
    winrt::com_ptr<IUnknown> pointer;
    pointer.copy_from(plain);
    pointer = nullptr;
#ifdef refused_plain_pointer_becomes_reference
    pointer = plain;
#else
    pointer.attach(plain);
#endif
#ifdef refused_reference_becomes_plain_pointer
    IUnknown* again = pointer;
#else
    IUnknown* again = pointer.get();
#endif
#ifdef refused_reference_becomes_bool
    const bool exists = pointer;
#else
    const bool exists{pointer};
#endif
    (void)(again && exists);
}

// What the platform has and the slice does not
// ----------------------------------------------------------------------

void absences(const controls::WebView& view, const IAsyncAction& action, const http::HttpCookie& cookie) {
#ifdef absent_property
    (void)view.DocumentTitle();
#endif
#ifdef absent_event
    view.UnviewableContentIdentified([](const auto&, const auto&) {});
#endif
#ifdef absent_enumerator
    (void)imaging::BitmapPixelFormat::Rgba16;
#endif
#ifdef absent_cancellation
    action.Cancel();
#endif
#ifdef absent_blocking_wait
    action.get();
#endif
#ifdef absent_priority
    (void)winrt::Windows::UI::Core::CoreDispatcherPriority::Idle;
#endif
#ifdef absent_statics_of_json
    json::JsonObject object{nullptr};
    (void)json::JsonObject::TryParse(L"{}", object);
#endif
}

}  // namespace
