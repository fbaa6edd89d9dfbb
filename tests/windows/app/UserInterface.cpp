// The classes of the app's window: its dispatcher, its panel, its display.

#include "World.h"

namespace app {

namespace {

namespace core = winrt::Windows::ApplicationModel::Core;
namespace ui = winrt::Windows::UI;
using namespace winrt::Windows::Graphics::Display;
using namespace winrt::Windows::UI::ViewManagement;

constexpr auto onUI = Object::Threads::ui;

struct OnUIThread {
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) const { uiThread().post(handle); }
    void await_resume() const {}
};

foundation::IAsyncAction dispatch(std::int32_t, ui::Core::DispatchedHandler handler) {
    co_await OnUIThread();
    handler();
}

ui::Core::CoreDispatcher dispatcher() {
    return make(L"Windows.UI.Core.CoreDispatcher").on<METHOD(ui::Core::ICoreDispatcher, RunAsync)>(dispatch);
}

core::CoreApplicationView mainView() {
    return make(L"Windows.ApplicationModel.Core.CoreApplicationView")
        .also<core::ICoreApplicationView>()
        .on<METHOD(core::ICoreApplicationView2, get_Dispatcher)>(dispatcher);
}

/// The window and its content: the panel, or a frame around it.
struct Window {
    static Window& shared() {
        static auto& window = *new Window;
        return window;
    }

    static foundation::IInspectable makePanel() {
        return make(L"Windows.UI.Xaml.Controls.Panel", onUI)
            .on<METHOD(controls::IPanel, get_Children)>([] { return shared().children; })
            .also<xaml::IUIElement>()
            .also<xaml::IDependencyObject>();
    }

    static foundation::IInspectable makeFrame() {
        return make(L"Windows.UI.Xaml.Controls.Frame", onUI)
            .also<xaml::IUIElement>()
            .also<xaml::IDependencyObject>();
    }

    bool hasContent = true;
    const foundation::IInspectable panel = makePanel();
    const foundation::IInspectable frame = makeFrame();
    const foundation::Collections::IVector<xaml::UIElement> children =
        winrt::single_threaded_vector<xaml::UIElement>();
};

xaml::Window currentWindow() {
    return make(L"Windows.UI.Xaml.Window", onUI)
        .on<METHOD(xaml::IWindow, get_Content)>([]() -> xaml::UIElement {
            const Window& window = Window::shared();
            const bool framed = world()->panelIsNested || !world()->hasPanel;
            return window.hasContent ? (framed ? window.frame : window.panel).as<xaml::UIElement>() : nullptr;
        })
        .on<METHOD(xaml::IWindow, put_Content)>(
            [](void* content) { Window::shared().hasContent = content != nullptr; });
}

foundation::IInspectable translation() {
    return make(L"Windows.UI.Xaml.Media.TranslateTransform", onUI)
        .on<METHOD(xaml::Media::ITranslateTransform, put_X)>([] {})
        .on<METHOD(xaml::Media::ITranslateTransform, put_Y)>([] {})
        .also<xaml::Media::ITransform>();
}

DisplayInformation display() {
    return make(L"Windows.Graphics.Display.DisplayInformation", onUI)
        .also<IDisplayInformation>()
        .on<METHOD(IDisplayInformation2, get_RawPixelsPerViewPixel)>(
            [] { return world()->rawPixelsPerViewPixel; });
}

ApplicationView applicationView() {
    return make(L"Windows.UI.ViewManagement.ApplicationView", onUI)
        .also<IApplicationView>()
        .constant<METHOD(IApplicationView2, get_VisibleBounds)>(windowBounds);
}

}  // namespace

xaml::DependencyObject appPanel() {
    return Window::shared().panel.as<xaml::DependencyObject>();
}

void restoreWindow() {
    Window::shared().hasContent = true;
    Window::shared().children.Clear();
}

Factories userInterface() {
    using Color = winrt::impl::struct_Windows_UI_Color;
    return {
        {L"Windows.ApplicationModel.Core.CoreApplication",
         answering<METHOD(core::ICoreImmersiveApplication, get_MainView)>(mainView)},
        {L"Windows.Graphics.Display.DisplayInformation",
         answering<METHOD(IDisplayInformationStatics, GetForCurrentView)>(display)},
        {L"Windows.UI.Colors",
         make(L"factory")
             .constant<METHOD(ui::IColorsStatics, get_Transparent)>(Color{0, 255, 255, 255})
             .constant<METHOD(ui::IColorsStatics, get_White)>(Color{255, 255, 255, 255})},
        {L"Windows.UI.ViewManagement.ApplicationView",
         answering<METHOD(IApplicationViewStatics2, GetForCurrentView)>(applicationView)},
        {L"Windows.UI.Xaml.Media.TranslateTransform", activating(translation)},
        {L"Windows.UI.Xaml.Media.VisualTreeHelper",
         make(L"factory")
             .on<METHOD(xaml::Media::IVisualTreeHelperStatics, GetChildrenCount)>(
                 [](void*) { return world()->hasPanel ? 1 : 0; })
             .on<METHOD(xaml::Media::IVisualTreeHelperStatics, GetChild)>(
                 [](void*, std::int32_t) { return appPanel(); })},
        {L"Windows.UI.Xaml.Window", answering<METHOD(xaml::IWindowStatics, get_Current)>(currentWindow)},
    };
}

}  // namespace app
