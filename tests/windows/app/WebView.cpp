// The control, with a page behind it that knows nothing but what the test tells it.

#include "World.h"

namespace app {

Object* makeWebViewFactory();

namespace {

using winrt::Windows::Web::IUriToStreamResolver;
using winrt::Windows::Web::WebErrorStatus;
using winrt::ZarvikWebViewRuntimeComponent::IJavaScriptBridge;

/// What the arguments of all navigation events have.
struct Arguments : Object {
    explicit Arguments(foundation::Uri uri, WebErrorStatus status = WebErrorStatus::Unknown)
        : Object(L"event arguments"), uri(std::move(uri)), status(status) {
        using Starting = controls::IWebViewNavigationStartingEventArgs;
        using Completed = controls::IWebViewNavigationCompletedEventArgs;
        using NewWindow = controls::IWebViewNewWindowRequestedEventArgs;
        static const auto starting =
            Answers<Arguments, Starting>()
                .on<[](Arguments& self, void** uri) { out(uri, self.uri); }>(&Methods<Starting>::get_Uri)
                .on<[](Arguments& self, bool value) { self.cancelled = value; }>(
                    &Methods<Starting>::put_Cancel);
        static const Answers<Arguments, controls::IWebViewContentLoadingEventArgs> loading;
        static const Answers<Arguments, controls::IWebViewDOMContentLoadedEventArgs> loaded;
        static const auto completed =
            Answers<Arguments, Completed>()
                .on<[](Arguments& self, bool* value) { *value = self.status == WebErrorStatus::Unknown; }>(
                    &Methods<Completed>::get_IsSuccess)
                .on<[](Arguments& self, std::int32_t* value) {
                    *value = static_cast<std::int32_t>(self.status);
                }>(&Methods<Completed>::get_WebErrorStatus);
        static const auto newWindow =
            Answers<Arguments, NewWindow>()
                .on<[](Arguments& self, void** uri) { out(uri, self.uri); }>(&Methods<NewWindow>::get_Uri)
                .on<[](Arguments& self, bool value) { self.handled = value; }>(
                    &Methods<NewWindow>::put_Handled);
        add(starting);
        add(loading);
        add(loaded);
        add(completed);
        add(newWindow);
    }

    foundation::Uri uri;
    WebErrorStatus status;
    bool cancelled = false;
    bool handled = false;
};

struct Permission : Object {
    explicit Permission(controls::WebViewPermissionType type) : Object(L"permission request"), type(type) {
        using Asked = controls::IWebViewPermissionRequestedEventArgs;
        using I = controls::IWebViewPermissionRequest;
        static const auto asked = Answers<Permission, Asked>().on<[](Permission& self, void** request) {
            out(request, project<controls::WebViewPermissionRequest>(self));
        }>(&Methods<Asked>::get_PermissionRequest);
        static const auto request = Answers<Permission, I>()
                                        .on<[](Permission& self, std::int32_t* type) {
                                            *type = static_cast<std::int32_t>(self.type);
                                        }>(&Methods<I>::get_PermissionType)
                                        .on<[](Permission&) { world().note(L"allowed"); }>(&Methods<I>::Allow)
                                        .on<[](Permission&) { world().note(L"denied"); }>(&Methods<I>::Deny);
        add(asked);
        add(request);
    }

    controls::WebViewPermissionType type;
};

struct WebView : Object {
    WebView();
    ~WebView() override {
        if (current == this) {
            current = nullptr;
        }
    }

    controls::WebView projection() { return project<controls::WebView>(*this); }

    /// Lets the events of a navigation follow, each in a turn of its own.
    void navigate(const foundation::Uri& uri, std::optional<std::size_t> historyEntry = {},
                  const IUriToStreamResolver& resolver = nullptr);
    void show(const foundation::Uri& uri, std::optional<std::size_t> historyEntry);
    void finish(WebErrorStatus status, const foundation::Uri& uri);
    void later(std::uint32_t ofNavigation, std::function<void()> step);
    foundation::IAsyncOperation<winrt::hstring> invoke(std::wstring name, std::wstring script);
    winrt::fire_and_forget readLocal(foundation::Uri uri, IUriToStreamResolver resolver,
                                     std::uint32_t number);

    template <typename Event>
    using Handler = foundation::TypedEventHandler<controls::WebView, Event>;

    winrt::event<Handler<controls::WebViewNavigationStartingEventArgs>> starting;
    winrt::event<Handler<controls::WebViewContentLoadingEventArgs>> contentLoading;
    winrt::event<Handler<controls::WebViewDOMContentLoadedEventArgs>> domContentLoaded;
    winrt::event<Handler<controls::WebViewNavigationCompletedEventArgs>> completed;
    winrt::event<Handler<controls::WebViewNewWindowRequestedEventArgs>> newWindow;
    winrt::event<Handler<controls::WebViewPermissionRequestedEventArgs>> permission;

    double width = 0;
    double height = 0;
    /// The number of the navigation under way or done.
    std::shared_ptr<std::atomic<std::uint32_t>> navigations = std::make_shared<std::atomic<std::uint32_t>>(0);
    bool loading = false;
    bool hasPage = false;
    std::vector<foundation::Uri> history;
    std::size_t position = 0;
    foundation::Uri source{nullptr};
    IJavaScriptBridge bridge{nullptr};

    static inline WebView* current = nullptr;
};

void WebView::later(std::uint32_t ofNavigation, std::function<void()> step) {
    uiThread().post([self = projection(), this, ofNavigation, step = std::move(step)] {
        if (*navigations == ofNavigation) {
            step();
        }
    });
}

void WebView::finish(WebErrorStatus status, const foundation::Uri& uri) {
    loading = false;
    completed(projection(), create<controls::WebViewNavigationCompletedEventArgs, Arguments>(uri, status));
}

void WebView::navigate(const foundation::Uri& uri, std::optional<std::size_t> historyEntry,
                       const IUriToStreamResolver& resolver) {
    const std::uint32_t number = ++*navigations;
    loading = true;
    bridge = nullptr;
    later(number, [this, uri, number, historyEntry, resolver] {
        const auto arguments = create<controls::WebViewNavigationStartingEventArgs, Arguments>(uri);
        starting(projection(), arguments);
        if (*navigations != number || behind<Arguments>(arguments).cancelled) {
            return;
        }
        const auto failure = uri ? world().unreachable.find(textOf(uri)) : world().unreachable.end();
        if (failure != world().unreachable.end()) {
            later(number, [this, uri, status = failure->second] { finish(status, uri); });
        } else if (resolver) {
            readLocal(uri, resolver, number);
        } else {
            show(uri, historyEntry);
        }
    });
}

/// The platform asks for the content on a thread of its own.
winrt::fire_and_forget WebView::readLocal(foundation::Uri uri, IUriToStreamResolver resolver,
                                          std::uint32_t number) {
    auto self = projection();
    co_await winrt::resume_background();
    bool found = false;
    try {
        const std::string content = contentOf(co_await resolver.UriToStreamAsync(uri));
        world().note(L"content: " + std::wstring(winrt::to_hstring(content)));
        found = true;
    } catch (...) {
        // Then the page is not there.
    }
    uiThread().post([self = std::move(self), this, uri, number, found] {
        if (*navigations == number && found) {
            show(uri, {});
        } else if (*navigations == number) {
            finish(WebErrorStatus::NotFound, uri);
        }
    });
}

void WebView::show(const foundation::Uri& uri, std::optional<std::size_t> historyEntry) {
    source = uri;
    hasPage = true;
    if (historyEntry) {
        position = *historyEntry;
    } else if (uri) {
        history.resize(history.empty() ? 0 : position + 1, nullptr);
        history.push_back(uri);
        position = history.size() - 1;
    }
    const std::uint32_t number = *navigations;
    later(number, [this, uri, number] {
        contentLoading(projection(), create<controls::WebViewContentLoadingEventArgs, Arguments>(uri));
        later(number, [this, uri, number] {
            domContentLoaded(projection(),
                             create<controls::WebViewDOMContentLoadedEventArgs, Arguments>(uri));
            later(number, [this, uri] { finish(WebErrorStatus::Unknown, uri); });
        });
    });
}

/// The script runs at once; only its end can be elsewhere, where nothing of the control may be kept.
foundation::IAsyncOperation<winrt::hstring> WebView::invoke(std::wstring name, std::wstring script) {
    world().note(name + L": " + script);
    const EndOfOperation end;
    const auto answer = world().script(script).value_or(ScriptAnswer{});
    const bool runs = hasPage;
    const auto counter = navigations;
    const std::uint32_t number = *counter;
    if (!answer.posted.empty() && bridge) {
        bridge.postMessage(answer.posted);
    }
    co_await end;
    if (!runs || number != *counter) {
        throw winrt::hresult_illegal_method_call();
    }
    // What a page throws, the helper that gives results turns into text.
    if (FAILED(answer.failure) && name == L"eval") {
        throw winrt::hresult_error(answer.failure);
    }
    co_return winrt::hstring(answer.result);
}

WebView::WebView() : Object(L"Windows.UI.Xaml.Controls.WebView") {
    using Navigation = controls::IWebView;
    using Content = controls::IWebView2;
    using Requests = controls::IWebView4;
    using Element = xaml::IFrameworkElement;
    using Visual = xaml::IUIElement;
    static const auto navigation =
        Answers<WebView, Navigation>()
            .on<[](WebView& self, void** uri) { out(uri, self.source); }>(&Methods<Navigation>::get_Source)
            .on<[](WebView& self, void* uri) { self.navigate(in<foundation::Uri>(uri)); }>(
                &Methods<Navigation>::Navigate)
            .on<[](WebView& self, void*) { self.navigate(nullptr); }>(&Methods<Navigation>::NavigateToString);
    static const auto content =
        Answers<WebView, Content>()
            .on<[](WebView& self, void* handler, winrt::event_token* token) {
                *token =
                    self.starting.add(in<Handler<controls::WebViewNavigationStartingEventArgs>>(handler));
            }>(&Methods<Content>::add_NavigationStarting)
            .on<[](WebView& self, void* handler, winrt::event_token* token) {
                *token =
                    self.contentLoading.add(in<Handler<controls::WebViewContentLoadingEventArgs>>(handler));
            }>(&Methods<Content>::add_ContentLoading)
            .on<[](WebView& self, void* handler, winrt::event_token* token) {
                *token = self.domContentLoaded.add(
                    in<Handler<controls::WebViewDOMContentLoadedEventArgs>>(handler));
            }>(&Methods<Content>::add_DOMContentLoaded)
            .on<[](WebView& self, void* handler, winrt::event_token* token) {
                *token =
                    self.completed.add(in<Handler<controls::WebViewNavigationCompletedEventArgs>>(handler));
            }>(&Methods<Content>::add_NavigationCompleted)
            .on<[](WebView& self, bool* value) { *value = self.position > 0; }>(
                &Methods<Content>::get_CanGoBack)
            .on<[](WebView& self, bool* value) { *value = self.position + 1 < self.history.size(); }>(
                &Methods<Content>::get_CanGoForward)
            .on<[](WebView& self) { self.navigate(self.history.at(self.position - 1), self.position - 1); }>(
                &Methods<Content>::GoBack)
            .on<[](WebView& self) { self.navigate(self.history.at(self.position + 1), self.position + 1); }>(
                &Methods<Content>::GoForward)
            .on<[](WebView& self) { self.navigate(self.source, self.position); }>(&Methods<Content>::Refresh)
            .on<[](WebView& self) {
                if (std::exchange(self.loading, false)) {
                    const auto number = ++*self.navigations;
                    self.later(number, [&self] { self.finish(WebErrorStatus::OperationCanceled, nullptr); });
                }
            }>(&Methods<Content>::Stop)
            .on<[](WebView& self, void* stream, void** result) {
                const auto target = in<streams::IRandomAccessStream>(stream);
                out(result, action([target, width = self.width, height = self.height] {
                        const double scale = world().rawPixelsPerViewPixel;
                        ++world().previews;
                        writePicture(target, {static_cast<std::uint32_t>(width * scale),
                                              static_cast<std::uint32_t>(height * scale), world().colour});
                    }));
            }>(&Methods<Content>::CapturePreviewToStreamAsync)
            .on<[](WebView& self, void* name, void* arguments, void** result) {
                const auto& texts = in<foundation::Collections::IIterable<winrt::hstring>>(arguments);
                out(result, self.invoke(std::wstring(in<winrt::hstring>(name)), std::wstring(*begin(texts))));
            }>(&Methods<Content>::InvokeScriptAsync)
            .on<[](WebView& self, void* uri, void* resolver) {
                self.navigate(in<foundation::Uri>(uri), {}, in<IUriToStreamResolver>(resolver));
            }>(&Methods<Content>::NavigateToLocalStreamUri)
            .on<[](WebView&, void* identifier, void* path, void** uri) {
                std::wstring relative(in<winrt::hstring>(path));
                relative.erase(0, relative.find_first_not_of(L'/'));
                out(uri, uriOf(L"ms-local-stream://app_" + std::wstring(in<winrt::hstring>(identifier)) +
                               L"/" + relative));
            }>(&Methods<Content>::BuildLocalStreamUri)
            .on<[](WebView&, winrt::impl::struct_Windows_UI_Color color) {
                world().note(color.A ? L"opaque" : L"transparent");
            }>(&Methods<Content>::put_DefaultBackgroundColor)
            .on<[](WebView&, std::int32_t, bool* done) {
                world().note(L"focus");
                *done = true;
            }>(&Methods<Content>::Focus)
            .on<[](WebView& self, void* request) {
                self.navigate(in<http::HttpRequestMessage>(request).RequestUri());
            }>(&Methods<Content>::NavigateWithHttpRequestMessage);
    static const auto requests =
        Answers<WebView, Requests>()
            .on<[](WebView& self, void* handler, winrt::event_token* token) {
                *token =
                    self.newWindow.add(in<Handler<controls::WebViewNewWindowRequestedEventArgs>>(handler));
            }>(&Methods<Requests>::add_NewWindowRequested)
            .on<[](WebView& self, void* handler, winrt::event_token* token) {
                *token =
                    self.permission.add(in<Handler<controls::WebViewPermissionRequestedEventArgs>>(handler));
            }>(&Methods<Requests>::add_PermissionRequested)
            .on<[](WebView& self, void* name, void* object) {
                if (in<winrt::hstring>(name) == L"_zarvikBridge") {
                    self.bridge = in<foundation::IInspectable>(object).as<IJavaScriptBridge>();
                }
            }>(&Methods<Requests>::AddWebAllowedObject);
    static const auto element =
        Answers<WebView, Element>()
            .on<[](WebView& self, double value) { self.width = value; }>(&Methods<Element>::put_Width)
            .on<[](WebView& self, double value) { self.height = value; }>(&Methods<Element>::put_Height)
            .on<[](WebView& self, double* value) { *value = self.width; }>(&Methods<Element>::get_Width)
            .on<[](WebView& self, double* value) { *value = self.height; }>(&Methods<Element>::get_Height)
            .on<[](WebView&, std::int32_t) {}>(&Methods<Element>::put_HorizontalAlignment)
            .on<[](WebView&, std::int32_t) {}>(&Methods<Element>::put_VerticalAlignment)
            .on<[](WebView&, void** parent) {
                *parent =
                    world().hasPanel ? appPanel().query(winrt::guid_of<xaml::IDependencyObject>()) : nullptr;
            }>(&Methods<Element>::get_Parent);
    static const auto visual = Answers<WebView, Visual>()
                                   .on<[](WebView&, void*) {}>(&Methods<Visual>::put_RenderTransform)
                                   .on<[](WebView&, std::int32_t visibility) {
                                       world().note(visibility ? L"collapsed" : L"visible");
                                   }>(&Methods<Visual>::put_Visibility);
    static const Answers<WebView, xaml::IDependencyObject> object;
    for (const Table* table : {static_cast<const Table*>(&navigation), static_cast<const Table*>(&content),
                               static_cast<const Table*>(&requests), static_cast<const Table*>(&element),
                               static_cast<const Table*>(&visual), static_cast<const Table*>(&object)}) {
        add(*table);
    }
    current = this;
}

struct WebViewClass : Factory<WebView> {
    WebViewClass() {
        using I = controls::IWebViewStatics4;
        static const auto table = Answers<WebViewClass, I>().on<[](WebViewClass&, void** result) {
            out(result, action([] { world().note(L"data cleared"); }));
        }>(&Methods<I>::ClearTemporaryWebDataAsync);
        add(table);
    }
};

}  // namespace

Object* makeWebViewFactory() {
    return new WebViewClass;
}

void requestPermission(controls::WebViewPermissionType type) {
    uiThread().run([&] {
        WebView& view = *WebView::current;
        view.permission(view.projection(),
                        create<controls::WebViewPermissionRequestedEventArgs, Permission>(type));
    });
}

void requestNewWindow(const std::wstring& url) {
    uiThread().run([&] {
        WebView& view = *WebView::current;
        view.newWindow(view.projection(),
                       create<controls::WebViewNewWindowRequestedEventArgs, Arguments>(uriOf(url)));
    });
}

}  // namespace app
