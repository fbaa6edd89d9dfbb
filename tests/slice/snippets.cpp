// What the Windows Runtime slice must refuse because one writes it easily, beside what it must allow instead.
// What is rarely written shows itself when the plug-in is compiled for Windows. The file compiles as it
// stands. With one of the macros that it tests defined, a line is exchanged, and the compiler must refuse it:
//
//   refused_...   on both sides: the real C++/WinRT refuses it too
//   absent_...    here only: the platform has it, the slice has not, and lacks it openly
//
// check.sh compiles it in each of these ways, without warnings: unused names are no reason to refuse
// anything.

#include "platform.h"

namespace {

using foundation::IAsyncAction;
using foundation::IAsyncOperation;
using winrt::hstring;

// Texts
// -------------------------------------------------------------------------------------------------------------

void textArguments() {
#ifdef refused_narrow_literal_as_text
    controls::WebView(nullptr).NavigateToString("<p>");
#else
    controls::WebView(nullptr).NavigateToString(L"<p>");
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
#ifdef refused_text_appended_to
    hstring(text) += L"a";
#endif
}

// Handles
// -----------------------------------------------------------------------------------------------------------

void handles(const controls::WebView& view, const xaml::DependencyObject& object) {
    controls::Panel panel = nullptr;
#ifdef refused_base_becomes_derived
    panel = object;
#else
    panel = object.try_as<controls::Panel>();
#endif
#ifdef refused_handle_on_the_heap
    const auto& kept = *new controls::Panel(panel);
#else
    const auto& kept = panel;
#endif
#ifdef refused_handle_becomes_bool
    const bool exists = panel;
#else
    const bool exists = static_cast<bool>(panel);
#endif
#ifdef refused_default_of_abstract_type
    const xaml::DependencyObject parent;
#else
    const xaml::DependencyObject parent = view.Parent();
#endif
    winrt::weak_ref<controls::WebView> weak = winrt::make_weak(view);
#ifdef refused_weak_reference_becomes_handle
    const controls::WebView strong = weak;
#else
    const controls::WebView strong = weak.get();
#endif
}

void values(const http::HttpCookie& cookie) {
    const foundation::IReference<foundation::DateTime> expires = cookie.Expires();
#ifdef refused_missing_value_becomes_value
    const foundation::DateTime time = expires;
#else
    const foundation::DateTime time = expires.Value();
#endif
#ifdef refused_system_time_as_time
    const foundation::DateTime now = std::chrono::system_clock::now();
#else
    const foundation::DateTime now = winrt::clock::now();
#endif
#ifdef refused_number_as_enumerator
    controls::WebView(nullptr).Visibility(1);
#else
    controls::WebView(nullptr).Visibility(xaml::Visibility::Collapsed);
#endif
}

// Arrays
// ------------------------------------------------------------------------------------------------------------

void arrays(const imaging::PixelDataProvider& provider, const streams::DataReader& reader) {
    winrt::com_array<std::uint8_t> pixels = provider.DetachPixelData();
#ifdef refused_array_copied
    const winrt::com_array<std::uint8_t> other = pixels;
#else
    const winrt::com_array<std::uint8_t> other = std::move(pixels);
#endif
    const std::vector<std::uint8_t> constant(4);
    std::vector<std::uint8_t> target(4);
#ifdef refused_read_into_constant
    reader.ReadBytes(constant);
#else
    reader.ReadBytes(target);
#endif
}

// Events and delegates
// ----------------------------------------------------------------------------------------------

void handlers(const controls::WebView& view, const winrt::Windows::UI::Core::CoreDispatcher& queue) {
    using winrt::Windows::UI::Core::CoreDispatcherPriority;
    view.ContentLoading([](const auto&, const auto&) {});
    view.ContentLoading([](const foundation::IInspectable&, const foundation::IInspectable&) {});
#ifdef refused_handler_with_fewer_parameters
    view.ContentLoading([](const controls::WebView&) {});
#endif
#ifdef refused_handler_that_changes_its_arguments
    view.ContentLoading([](controls::WebView&, const controls::WebViewContentLoadingEventArgs&) {});
#endif
#ifdef refused_work_without_priority
    queue.RunAsync([] {});
#else
    queue.RunAsync(CoreDispatcherPriority::Normal, [] {});
#endif
}

// Asynchrony
// --------------------------------------------------------------------------------------------------------

IAsyncOperation<streams::IBuffer> makeBuffer(xaml::Media::Imaging::RenderTargetBitmap bitmap) {
    co_return co_await bitmap.GetPixelsAsync();
}

IAsyncAction results() {
#ifdef refused_operation_as_its_result
    const streams::IBuffer buffer = makeBuffer({});
#else
    const streams::IBuffer buffer = co_await makeBuffer({});
#endif
    co_return;
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

struct Own {
    std::shared_ptr<int> member;
};

#ifdef refused_operation_of_own_type
IAsyncOperation<Own> own() {
    co_return Own{};
}
#endif

winrt::fire_and_forget threads(winrt::Windows::UI::Core::CoreDispatcher queue) {
    using namespace std::chrono_literals;
    co_await winrt::resume_foreground(queue);
#ifdef refused_number_as_delay
    co_await winrt::resume_after(10);
#else
    co_await winrt::resume_after(10ms);
#endif
#ifdef refused_fire_and_forget_awaited
    co_await threads(queue);
#endif
}

// Pages
// -------------------------------------------------------------------------------------------------------------

IAsyncAction pages(controls::WebView view, hstring text, std::wstring standard) {
    using winrt::ZarvikWebViewRuntimeComponent::JavaScriptBridge;
#ifdef refused_standard_text_as_script_argument
    co_await view.InvokeScriptAsync(L"eval", {standard});
#else
    co_await view.InvokeScriptAsync(L"eval", {text, L"a", hstring(standard)});
#endif
#ifdef refused_script_argument_outside_of_a_list
    co_await view.InvokeScriptAsync(L"eval", text);
#endif
#ifdef refused_list_that_stays
    const std::vector<hstring> kept{text};
    co_await view.InvokeScriptAsync(L"eval", kept);
#endif
#ifdef refused_handler_of_standard_text
    JavaScriptBridge().MessageEmitted([](const std::wstring&) {});
#else
    JavaScriptBridge().MessageEmitted([](const hstring&) {});
#endif
}

// Errors
// ------------------------------------------------------------------------------------------------------------

void errors(const winrt::hresult_error& error) {
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
#ifdef refused_plain_pointer_becomes_reference
    pointer = plain;
#else
    pointer.attach(plain);
#endif
#ifdef refused_reference_becomes_bool
    const bool exists = pointer;
#else
    const bool exists{pointer};
#endif
}

// What the platform has and the slice does not
// ----------------------------------------------------------------------

void absences(const controls::WebView& view, const IAsyncAction& action) {
#ifdef absent_property
    (void)view.DocumentTitle();
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
}

}  // namespace
