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
    using I = ui::Core::ICoreDispatcher;
    return make<I>(L"Windows.UI.Core.CoreDispatcher").on<&Methods<I>::RunAsync>(dispatch);
}

core::CoreApplicationView mainView() {
    using I = core::ICoreApplicationView2;
    return make<core::ICoreApplicationView>(L"Windows.ApplicationModel.Core.CoreApplicationView")
        .as<I>()
        .on<&Methods<I>::get_Dispatcher>(dispatcher);
}

/// The window and its content: the panel, or a frame around it.
struct Window {
    static Window& shared() {
        static auto& window = *new Window;
        return window;
    }

    static foundation::IInspectable makePanel() {
        using I = controls::IPanel;
        return make<I>(L"Windows.UI.Xaml.Controls.Panel", onUI)
            .on<&Methods<I>::get_Children>([] { return shared().children; })
            .as<xaml::IUIElement>()
            .as<xaml::IDependencyObject>();
    }

    static foundation::IInspectable makeFrame() {
        return make<xaml::IUIElement>(L"Windows.UI.Xaml.Controls.Frame", onUI).as<xaml::IDependencyObject>();
    }

    bool hasContent = true;
    const foundation::IInspectable panel = makePanel();
    const foundation::IInspectable frame = makeFrame();
    const foundation::Collections::IVector<xaml::UIElement> children =
        winrt::single_threaded_vector<xaml::UIElement>();
};

xaml::Window currentWindow() {
    using M = Methods<xaml::IWindow>;
    return make<xaml::IWindow>(L"Windows.UI.Xaml.Window", onUI)
        .on<&M::get_Content>([]() -> xaml::UIElement {
            const Window& window = Window::shared();
            const bool framed = world()->panelIsNested || !world()->hasPanel;
            return window.hasContent ? (framed ? window.frame : window.panel).as<xaml::UIElement>() : nullptr;
        })
        .on<&M::put_Content>([](void* content) {
            Window::shared().hasContent = content != nullptr;
            world()->note(content ? L"content set" : L"content removed");
        });
}

foundation::IInspectable translation() {
    using M = Methods<xaml::Media::ITranslateTransform>;
    return make<xaml::Media::ITranslateTransform>(L"Windows.UI.Xaml.Media.TranslateTransform", onUI)
        .on<&M::put_X>([](double x) { world()->note(std::format(L"x {}", x)); })
        .on<&M::put_Y>([](double y) { world()->note(std::format(L"y {}", y)); })
        .as<xaml::Media::ITransform>();
}

DisplayInformation display() {
    using I = IDisplayInformation2;
    return make<IDisplayInformation>(L"Windows.Graphics.Display.DisplayInformation", onUI)
        .as<I>()
        .on<&Methods<I>::get_RawPixelsPerViewPixel>([] { return world()->rawPixelsPerViewPixel; });
}

ApplicationView applicationView() {
    using I = IApplicationView2;
    return make<IApplicationView>(L"Windows.UI.ViewManagement.ApplicationView", onUI)
        .as<I>()
        .constant<&Methods<I>::get_VisibleBounds>(windowBounds);
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
    using Applications = core::ICoreImmersiveApplication;
    using Displays = IDisplayInformationStatics;
    using Colors = ui::IColorsStatics;
    using Color = winrt::impl::struct_Windows_UI_Color;
    using Views = IApplicationViewStatics2;
    using Trees = xaml::Media::IVisualTreeHelperStatics;
    using Windows = xaml::IWindowStatics;
    return {
        {L"Windows.ApplicationModel.Core.CoreApplication",
         answering<Applications, &Methods<Applications>::get_MainView>(mainView)},
        {L"Windows.Graphics.Display.DisplayInformation",
         answering<Displays, &Methods<Displays>::GetForCurrentView>(display)},
        {L"Windows.UI.Colors",
         [] {
             return make<Colors>(L"factory")
                 .constant<&Methods<Colors>::get_Transparent>(Color{0, 255, 255, 255})
                 .constant<&Methods<Colors>::get_White>(Color{255, 255, 255, 255});
         }},
        {L"Windows.UI.ViewManagement.ApplicationView",
         answering<Views, &Methods<Views>::GetForCurrentView>(applicationView)},
        {L"Windows.UI.Xaml.Media.TranslateTransform", activating(translation)},
        {L"Windows.UI.Xaml.Media.VisualTreeHelper",
         [] {
             return make<Trees>(L"factory")
                 .on<&Methods<Trees>::GetChildrenCount>([](void*) { return world()->hasPanel ? 1 : 0; })
                 .on<&Methods<Trees>::GetChild>([](void*, std::int32_t) { return appPanel(); });
         }},
        {L"Windows.UI.Xaml.Window", answering<Windows, &Methods<Windows>::get_Current>(currentWindow)},
    };
}

}  // namespace app
