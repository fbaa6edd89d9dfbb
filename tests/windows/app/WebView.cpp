// The control, with a page behind it that knows nothing but what the test tells it.

#include "World.h"

namespace app {

namespace {

using winrt::Windows::Web::IUriToStreamResolver;
using winrt::Windows::Web::WebErrorStatus;
using winrt::ZarvikWebViewRuntimeComponent::IJavaScriptBridge;

/// The arguments of any event of a navigation.
struct Arguments : Object {
    explicit Arguments(foundation::Uri uri, WebErrorStatus status = WebErrorStatus::Unknown)
        : Object(L"event arguments"), uri(std::move(uri)), status(status) {
        using Starting = controls::IWebViewNavigationStartingEventArgs;
        using Completed = controls::IWebViewNavigationCompletedEventArgs;
        using NewWindow = controls::IWebViewNewWindowRequestedEventArgs;
        add([] {
            return Answers<Arguments, Starting>()
                .on<&Arguments::uri>(&Methods<Starting>::get_Uri)
                .on<&Arguments::cancelled>(&Methods<Starting>::put_Cancel);
        });
        add([] {
            return Answers<Arguments, Completed>()
                .on<[](Arguments& self) { return self.status == WebErrorStatus::Unknown; }>(
                    &Methods<Completed>::get_IsSuccess)
                .on<&Arguments::status>(&Methods<Completed>::get_WebErrorStatus);
        });
        add([] {
            return Answers<Arguments, NewWindow>()
                .on<&Arguments::uri>(&Methods<NewWindow>::get_Uri)
                .on<&Arguments::handled>(&Methods<NewWindow>::put_Handled);
        });
        addBare<controls::IWebViewContentLoadingEventArgs, controls::IWebViewDOMContentLoadedEventArgs>();
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
        add([] {
            return Answers<Permission, Asked>()
                .on<[](Permission& self) { return project<controls::WebViewPermissionRequest>(self); }>(
                    &Methods<Asked>::get_PermissionRequest);
        });
        add([] {
            return Answers<Permission, I>()
                .on<&Permission::type>(&Methods<I>::get_PermissionType)
                .on<[](Permission&) { world().note(L"allowed"); }>(&Methods<I>::Allow)
                .on<[](Permission&) { world().note(L"denied"); }>(&Methods<I>::Deny);
        });
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

/// Lets an event's member take a handler.
template <auto event>
constexpr auto subscribe = [](WebView& self, void* handler) {
    using Event = std::remove_reference_t<decltype(self.*event)>;
    return (self.*event).add(reinterpret_cast<const typename Event::delegate_type&>(handler));
};

WebView::WebView() : Object(L"Windows.UI.Xaml.Controls.WebView") {
    using Navigation = controls::IWebView;
    using Content = controls::IWebView2;
    using Requests = controls::IWebView4;
    add([] {
        using M = Methods<Navigation>;
        return Answers<WebView, Navigation>()
            .on<&WebView::source>(&M::get_Source)
            .on<[](WebView& self, const foundation::Uri& uri) { self.navigate(uri); }>(&M::Navigate)
            .on<[](WebView& self) { self.navigate(nullptr); }>(&M::NavigateToString);
    });
    add([] {
        using M = Methods<Content>;
        return Answers<WebView, Content>()
            .on<subscribe<&WebView::starting>>(&M::add_NavigationStarting)
            .on<subscribe<&WebView::contentLoading>>(&M::add_ContentLoading)
            .on<subscribe<&WebView::domContentLoaded>>(&M::add_DOMContentLoaded)
            .on<subscribe<&WebView::completed>>(&M::add_NavigationCompleted)
            .on<[](WebView& self) { return self.position > 0; }>(&M::get_CanGoBack)
            .on<[](WebView& self) { return self.position + 1 < self.history.size(); }>(&M::get_CanGoForward)
            .on<[](WebView& self) { self.navigate(self.history.at(self.position - 1), self.position - 1); }>(
                &M::GoBack)
            .on<[](WebView& self) { self.navigate(self.history.at(self.position + 1), self.position + 1); }>(
                &M::GoForward)
            .on<[](WebView& self) { self.navigate(self.source, self.position); }>(&M::Refresh)
            .on<[](WebView& self) {
                if (std::exchange(self.loading, false)) {
                    self.later(++*self.navigations,
                               [&self] { self.finish(WebErrorStatus::OperationCanceled, nullptr); });
                }
            }>(&M::Stop)
            .on<[](WebView& self, const streams::IRandomAccessStream& stream) {
                return action([stream, width = self.width, height = self.height] {
                    ++world().previews;
                    writePicture(stream, pictureOf(width, height));
                });
            }>(&M::CapturePreviewToStreamAsync)
            .on<[](WebView& self, const winrt::hstring& name,
                   const foundation::Collections::IIterable<winrt::hstring>& arguments) {
                return self.invoke(std::wstring(name), std::wstring(*begin(arguments)));
            }>(&M::InvokeScriptAsync)
            .on<[](WebView& self, const foundation::Uri& uri, const IUriToStreamResolver& resolver) {
                self.navigate(uri, {}, resolver);
            }>(&M::NavigateToLocalStreamUri)
            .on<[](WebView&, const winrt::hstring& identifier, const winrt::hstring& path) {
                std::wstring relative(path);
                relative.erase(0, relative.find_first_not_of(L'/'));
                return uriOf(L"ms-local-stream://app_" + std::wstring(identifier) + L"/" + relative);
            }>(&M::BuildLocalStreamUri)
            .on<[](WebView&, winrt::impl::struct_Windows_UI_Color color) {
                world().note(color.A ? L"opaque" : L"transparent");
            }>(&M::put_DefaultBackgroundColor)
            .on<[](WebView&, std::int32_t) { return true; }>(&M::Focus)
            .on<[](WebView& self, const http::HttpRequestMessage& request) {
                self.navigate(request.RequestUri());
            }>(&M::NavigateWithHttpRequestMessage);
    });
    add([] {
        using M = Methods<Requests>;
        return Answers<WebView, Requests>()
            .on<subscribe<&WebView::newWindow>>(&M::add_NewWindowRequested)
            .on<subscribe<&WebView::permission>>(&M::add_PermissionRequested)
            .on<[](WebView& self, const winrt::hstring& name, const foundation::IInspectable& object) {
                check(name == L"_zarvikBridge", "another object was added to the page");
                self.bridge = object.as<IJavaScriptBridge>();
            }>(&M::AddWebAllowedObject);
    });
    add([] {
        using M = Methods<xaml::IFrameworkElement>;
        return Answers<WebView, xaml::IFrameworkElement>()
            .on<&WebView::width>(&M::put_Width)
            .on<&WebView::height>(&M::put_Height)
            .on<&WebView::width>(&M::get_Width)
            .on<&WebView::height>(&M::get_Height)
            .on<[](WebView&) {}>(&M::put_HorizontalAlignment)
            .on<[](WebView&) {}>(&M::put_VerticalAlignment)
            .on<[](WebView&) {
                return world().hasPanel ? appPanel().query(winrt::guid_of<xaml::IDependencyObject>())
                                        : nullptr;
            }>(&M::get_Parent);
    });
    add([] {
        using M = Methods<xaml::IUIElement>;
        return Answers<WebView, xaml::IUIElement>()
            .on<[](WebView&) {}>(&M::put_RenderTransform)
            .on<[](WebView&) {}>(&M::put_Visibility);
    });
    addBare<xaml::IDependencyObject>();
    current = this;
}

}  // namespace

Factories webView() {
    return {{L"Windows.UI.Xaml.Controls.WebView", statics(activation<WebView>, [] {
                 using I = controls::IWebViewStatics4;
                 return Answers<Object, I>()
                     .on<[](Object&) { return action([] { world().note(L"data cleared"); }); }>(
                         &Methods<I>::ClearTemporaryWebDataAsync);
             })}};
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
