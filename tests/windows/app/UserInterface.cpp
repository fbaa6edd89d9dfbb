// The classes of the app's window: its dispatcher, its panel, its display.

#include "World.h"

namespace app {

namespace {

namespace core = winrt::Windows::ApplicationModel::Core;
namespace ui = winrt::Windows::UI;
using namespace winrt::Windows::Graphics::Display;
using namespace winrt::Windows::UI::ViewManagement;

struct OnUIThread {
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) const { uiThread().post(handle); }
    void await_resume() const {}
};

foundation::IAsyncAction dispatch(ui::Core::DispatchedHandler handler) {
    co_await OnUIThread();
    handler();
}

/// The window and its content: the panel, or a frame around it.
struct Window : Object {
    Window() : Object(L"Windows.UI.Xaml.Window") {
        add([] {
            using M = Methods<xaml::IWindow>;
            return Answers<Window, xaml::IWindow>()
                .on<[](Window& self) {
                    Object& root = world().panelIsNested || !world().hasPanel ? self.frame : self.panel;
                    return self.hasContent ? root.query(winrt::guid_of<xaml::IUIElement>()) : nullptr;
                }>(&M::get_Content)
                .on<[](Window& self, void* content) {
                    self.hasContent = content != nullptr;
                    world().note(self.hasContent ? L"content set" : L"content removed");
                }>(&M::put_Content);
        });
        panel.add([] {
            return Answers<Object, controls::IPanel>().on<[](Object&) { return window().children; }>(
                &Methods<controls::IPanel>::get_Children);
        });
        panel.addBare<xaml::IUIElement, xaml::IDependencyObject>();
        frame.addBare<xaml::IUIElement, xaml::IDependencyObject>();
    }

    static Window& window() {
        static auto& window = *new Window;
        return window;
    }

    bool hasContent = true;
    Object& panel = *new Object(L"Windows.UI.Xaml.Controls.Panel");
    Object& frame = *new Object(L"Windows.UI.Xaml.Controls.Frame");
    foundation::Collections::IVector<xaml::UIElement> children =
        winrt::single_threaded_vector<xaml::UIElement>();
};

struct Translation : Object {
    Translation() : Object(L"Windows.UI.Xaml.Media.TranslateTransform") {
        add([] {
            using M = Methods<xaml::Media::ITranslateTransform>;
            return Answers<Translation, xaml::Media::ITranslateTransform>()
                .on<&Translation::x>(&M::put_X)
                .on<&Translation::y>(&M::put_Y);
        });
        addBare<xaml::Media::ITransform>();
    }

    double x = 0;
    double y = 0;
};

core::CoreApplicationView mainView(Object&) {
    auto* const view = new Object(L"Windows.ApplicationModel.Core.CoreApplicationView", Object::Threads::any);
    view->addBare<core::ICoreApplicationView>().add([] {
        return Answers<Object, core::ICoreApplicationView2>().on<[](Object&) {
            auto* const dispatcher = new Object(L"Windows.UI.Core.CoreDispatcher", Object::Threads::any);
            dispatcher->add([] {
                return Answers<Object, ui::Core::ICoreDispatcher>()
                    .on<[](Object&, std::int32_t, const ui::Core::DispatchedHandler& handler) {
                        return dispatch(handler);
                    }>(&Methods<ui::Core::ICoreDispatcher>::RunAsync);
            });
            return adopt<ui::Core::CoreDispatcher>(dispatcher);
        }>(&Methods<core::ICoreApplicationView2>::get_Dispatcher);
    });
    return adopt<core::CoreApplicationView>(view);
}

DisplayInformation display(Object&) {
    auto* const object = new Object(L"Windows.Graphics.Display.DisplayInformation");
    object->addBare<IDisplayInformation>().add([] {
        return Answers<Object, IDisplayInformation2>()
            .on<[](Object&) { return world().rawPixelsPerViewPixel.load(); }>(
                &Methods<IDisplayInformation2>::get_RawPixelsPerViewPixel);
    });
    return adopt<DisplayInformation>(object);
}

ApplicationView applicationView(Object&) {
    auto* const object = new Object(L"Windows.UI.ViewManagement.ApplicationView");
    object->addBare<IApplicationView>().add([] {
        return Answers<Object, IApplicationView2>().on<[](Object&) { return world().visibleBounds; }>(
            &Methods<IApplicationView2>::get_VisibleBounds);
    });
    return adopt<ApplicationView>(object);
}

using Color = winrt::impl::struct_Windows_UI_Color;

}  // namespace

Object& appPanel() {
    return Window::window().panel;
}

void restoreWindow() {
    Window::window().hasContent = true;
    Window::window().children.Clear();
}

Factories userInterface() {
    return {
        {L"Windows.ApplicationModel.Core.CoreApplication", statics([] {
             using I = core::ICoreImmersiveApplication;
             return Answers<Object, I>().on<[](Object& self) { return mainView(self); }>(
                 &Methods<I>::get_MainView);
         })},
        {L"Windows.Graphics.Display.DisplayInformation", statics([] {
             using I = IDisplayInformationStatics;
             return Answers<Object, I>().on<[](Object& self) { return display(self); }>(
                 &Methods<I>::GetForCurrentView);
         })},
        {L"Windows.UI.Colors", statics([] {
             using I = ui::IColorsStatics;
             return Answers<Object, I>()
                 .on<[](Object&) { return Color{0, 255, 255, 255}; }>(&Methods<I>::get_Transparent)
                 .on<[](Object&) { return Color{255, 255, 255, 255}; }>(&Methods<I>::get_White);
         })},
        {L"Windows.UI.ViewManagement.ApplicationView", statics([] {
             using I = IApplicationViewStatics2;
             return Answers<Object, I>().on<[](Object& self) { return applicationView(self); }>(
                 &Methods<I>::GetForCurrentView);
         })},
        {L"Windows.UI.Xaml.Media.TranslateTransform", factory<Translation>()},
        {L"Windows.UI.Xaml.Media.VisualTreeHelper", statics([] {
             using I = xaml::Media::IVisualTreeHelperStatics;
             return Answers<Object, I>()
                 .on<[](Object&, void*) { return world().hasPanel ? 1 : 0; }>(&Methods<I>::GetChildrenCount)
                 .on<[](Object&, void*, std::int32_t) {
                     return appPanel().query(winrt::guid_of<xaml::IDependencyObject>());
                 }>(&Methods<I>::GetChild);
         })},
        {L"Windows.UI.Xaml.Window", statics([] {
             using I = xaml::IWindowStatics;
             return Answers<Object, I>().on<[](Object&) { return project<xaml::Window>(Window::window()); }>(
                 &Methods<I>::get_Current);
         })},
    };
}

}  // namespace app
