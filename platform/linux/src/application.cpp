// What the app itself is made of: its view, the queue of its thread, its window's bounds, its display.

#include <gtk/gtk.h>

#include <winrt/Windows.ApplicationModel.Core.h>
#include <winrt/Windows.Graphics.Display.h>
#include <winrt/Windows.UI.ViewManagement.h>

#include "native_window.h"
#include "ui_thread.h"

namespace runtime {
namespace {

/// Stands for the objects of which there is one per process and which have no state of their own.
std::shared_ptr<winrt::impl::object> const& application_object() {
    static auto* const object = new std::shared_ptr<winrt::impl::object>(new winrt::impl::object());
    return *object;
}

}  // namespace
}  // namespace runtime

namespace winrt::Windows::ApplicationModel::Core {

CoreApplicationView CoreApplication::MainView() {
    runtime::ui_thread::instance();
    return CoreApplicationView(runtime::application_object());
}

UI::Core::CoreDispatcher CoreApplicationView::Dispatcher() const {
    return UI::Core::CoreDispatcher(implementation);
}

}  // namespace winrt::Windows::ApplicationModel::Core

namespace winrt::Windows::UI::Core {

Foundation::IAsyncAction CoreDispatcher::RunAsync(CoreDispatcherPriority,
                                                  DispatchedHandler const& handler) const {
    auto operation = std::make_shared<impl::async_object<void>>();
    runtime::ui_thread::instance().post([operation, handler] {
        try {
            handler();
            operation->complete();
        } catch (...) {
            operation->fail(std::current_exception());
        }
    });
    return Foundation::IAsyncAction(operation);
}

bool CoreDispatcher::HasThreadAccess() const {
    return runtime::ui_thread::is_current();
}

}  // namespace winrt::Windows::UI::Core

namespace winrt::Windows::UI::ViewManagement {

ApplicationView ApplicationView::GetForCurrentView() {
    runtime::ui_thread::require_current();
    return ApplicationView(runtime::application_object());
}

Foundation::Rect ApplicationView::VisibleBounds() const {
    auto const size = runtime::native_window::instance().size();
    return {0, 0, static_cast<float>(size.width), static_cast<float>(size.height)};
}

}  // namespace winrt::Windows::UI::ViewManagement

namespace winrt::Windows::Graphics::Display {

DisplayInformation DisplayInformation::GetForCurrentView() {
    runtime::ui_thread::require_current();
    return DisplayInformation(runtime::application_object());
}

double DisplayInformation::RawPixelsPerViewPixel() const {
    return runtime::native_window::instance().scale_factor();
}

}  // namespace winrt::Windows::Graphics::Display
