// The classes of the app's window: its dispatcher, its panel, its display.

#include "World.h"

namespace app {

namespace {

namespace core = winrt::Windows::ApplicationModel::Core;
namespace ui = winrt::Windows::UI;
using xaml::Media::VisualTreeHelper;

struct OnUIThread {
    bool await_ready() const { return false; }
    void await_suspend(std::coroutine_handle<> handle) const { uiThread().post(handle); }
    void await_resume() const {}
};

foundation::IAsyncAction dispatch(ui::Core::DispatchedHandler handler) {
    co_await OnUIThread();
    handler();
}

struct Dispatcher : Object {
    Dispatcher() : Object(L"Windows.UI.Core.CoreDispatcher", Threads::any) {
        static const auto table = Answers<Dispatcher, ui::Core::ICoreDispatcher>()
                                      .on<[](Dispatcher&, std::int32_t, void* handler, void** action) {
                                          out(action, dispatch(in<ui::Core::DispatchedHandler>(handler)));
                                      }>(&Methods<ui::Core::ICoreDispatcher>::RunAsync);
        add(table);
    }
};

struct View : Object {
    View() : Object(L"Windows.ApplicationModel.Core.CoreApplicationView", Threads::any) {
        static const Answers<View, core::ICoreApplicationView> first;
        static const auto second =
            Answers<View, core::ICoreApplicationView2>().on<[](View&, void** dispatcher) {
                out(dispatcher, create<ui::Core::CoreDispatcher, Dispatcher>());
            }>(&Methods<core::ICoreApplicationView2>::get_Dispatcher);
        add(first);
        add(second);
    }
};

struct Application : Object {
    Application() : Object(L"Windows.ApplicationModel.Core.CoreApplication", Threads::any) {
        static const auto table =
            Answers<Application, core::ICoreImmersiveApplication>()
                .on<[](Application&, void** view) { out(view, create<core::CoreApplicationView, View>()); }>(
                    &Methods<core::ICoreImmersiveApplication>::get_MainView);
        add(table);
    }
};

/// The window's content: a panel, or something that has one inside.
struct Panel : Object {
    Panel() : Object(L"Windows.UI.Xaml.Controls.Panel") {
        static const auto table = Answers<Panel, controls::IPanel>()
                                      .on<[](Panel& self, void** children) { out(children, self.children); }>(
                                          &Methods<controls::IPanel>::get_Children);
        static const Answers<Panel, xaml::IUIElement> element;
        static const Answers<Panel, xaml::IDependencyObject> object;
        add(table);
        add(element);
        add(object);
    }

    foundation::Collections::IVector<xaml::UIElement> children =
        winrt::single_threaded_vector<xaml::UIElement>();
};

struct Frame : Object {
    Frame() : Object(L"Windows.UI.Xaml.Controls.Frame") {
        static const Answers<Frame, xaml::IUIElement> element;
        static const Answers<Frame, xaml::IDependencyObject> object;
        add(element);
        add(object);
    }
};

struct TreeHelper : Object {
    TreeHelper() : Object(L"Windows.UI.Xaml.Media.VisualTreeHelper") {
        using I = xaml::Media::IVisualTreeHelperStatics;
        static const auto table =
            Answers<TreeHelper, I>()
                .on<[](TreeHelper&, void*, std::int32_t* count) { *count = world().hasPanel ? 1 : 0; }>(
                    &Methods<I>::GetChildrenCount)
                .on<[](TreeHelper&, void*, std::int32_t, void** child) {
                    *child = appPanel().query(winrt::guid_of<xaml::IDependencyObject>());
                }>(&Methods<I>::GetChild);
        add(table);
    }
};

struct Window : Object {
    Window() : Object(L"Windows.UI.Xaml.Window") {
        using I = xaml::IWindow;
        static const auto table = Answers<Window, I>()
                                      .on<[](Window& self, void** content) {
                                          out(content, self.hasContent ? self.content() : nullptr);
                                      }>(&Methods<I>::get_Content)
                                      .on<[](Window& self, void* content) {
                                          self.hasContent = content != nullptr;
                                          world().note(self.hasContent ? L"content set" : L"content removed");
                                      }>(&Methods<I>::put_Content);
        add(table);
    }

    xaml::UIElement content() {
        Object& root = world().panelIsNested || !world().hasPanel ? static_cast<Object&>(frame) : panel;
        return {root.query(winrt::guid_of<xaml::IUIElement>()), winrt::take_ownership_from_abi};
    }

    bool hasContent = true;
    Panel& panel = *new Panel;
    Frame& frame = *new Frame;
};

Window& window() {
    static auto& window = *new Window;
    return window;
}

struct WindowClass : Object {
    WindowClass() : Object(L"Window's factory") {
        static const auto table =
            Answers<WindowClass, xaml::IWindowStatics>()
                .on<[](WindowClass&, void** current) { out(current, project<xaml::Window>(window())); }>(
                    &Methods<xaml::IWindowStatics>::get_Current);
        add(table);
    }
};

struct Translation : Object {
    Translation() : Object(L"Windows.UI.Xaml.Media.TranslateTransform") {
        using I = xaml::Media::ITranslateTransform;
        static const auto table = Answers<Translation, I>()
                                      .on<[](Translation&, double) {}>(&Methods<I>::put_X)
                                      .on<[](Translation&, double) {}>(&Methods<I>::put_Y);
        static const Answers<Translation, xaml::Media::ITransform> transform;
        add(table);
        add(transform);
    }
};

struct Display : Object {
    Display() : Object(L"Windows.Graphics.Display.DisplayInformation") {
        using namespace winrt::Windows::Graphics::Display;
        static const auto statics =
            Answers<Display, IDisplayInformationStatics>()
                .on<[](Display& self, void** display) { out(display, project<DisplayInformation>(self)); }>(
                    &Methods<IDisplayInformationStatics>::GetForCurrentView);
        static const Answers<Display, IDisplayInformation> first;
        static const auto second =
            Answers<Display, IDisplayInformation2>()
                .on<[](Display&, double* value) { *value = world().rawPixelsPerViewPixel; }>(
                    &Methods<IDisplayInformation2>::get_RawPixelsPerViewPixel);
        add(statics);
        add(first);
        add(second);
    }
};

struct AppView : Object {
    AppView() : Object(L"Windows.UI.ViewManagement.ApplicationView") {
        using namespace ui::ViewManagement;
        static const auto statics =
            Answers<AppView, IApplicationViewStatics2>()
                .on<[](AppView& self, void** view) { out(view, project<ApplicationView>(self)); }>(
                    &Methods<IApplicationViewStatics2>::GetForCurrentView);
        static const Answers<AppView, IApplicationView> first;
        static const auto second =
            Answers<AppView, IApplicationView2>()
                .on<[](AppView&, foundation::Rect* bounds) { *bounds = world().visibleBounds; }>(
                    &Methods<IApplicationView2>::get_VisibleBounds);
        add(statics);
        add(first);
        add(second);
    }
};

struct Colors : Object {
    Colors() : Object(L"Windows.UI.Colors", Threads::any) {
        using I = ui::IColorsStatics;
        using Color = winrt::impl::struct_Windows_UI_Color;
        static const auto table =
            Answers<Colors, I>()
                .on<[](Colors&, Color* color) { *color = {0, 255, 255, 255}; }>(&Methods<I>::get_Transparent)
                .on<[](Colors&, Color* color) { *color = {255, 255, 255, 255}; }>(&Methods<I>::get_White);
        add(table);
    }
};

}  // namespace

Object& appPanel() {
    return window().panel;
}

void restoreWindow() {
    window().hasContent = true;
    window().panel.children.Clear();
}

Object* makeWebViewFactory();
MakeObject contentFactoryOf(const std::wstring& className);

MakeObject factoryOf(const std::wstring& className) {
    static const std::map<std::wstring, MakeObject> factories = {
        {L"Windows.ApplicationModel.Core.CoreApplication", make<Application>},
        {L"Windows.Graphics.Display.DisplayInformation", make<Display>},
        {L"Windows.UI.Colors", make<Colors>},
        {L"Windows.UI.ViewManagement.ApplicationView", make<AppView>},
        {L"Windows.UI.Xaml.Controls.WebView", makeWebViewFactory},
        {L"Windows.UI.Xaml.Media.TranslateTransform", make<Factory<Translation>>},
        {L"Windows.UI.Xaml.Media.VisualTreeHelper", make<TreeHelper>},
        {L"Windows.UI.Xaml.Window", make<WindowClass>},
    };
    const auto found = factories.find(className);
    return found == factories.end() ? contentFactoryOf(className) : found->second;
}

}  // namespace app
