// The control, with a page behind it that knows nothing but what the test tells it.

#include "World.h"

namespace app {

namespace {

using winrt::Windows::Web::IUriToStreamResolver;
using winrt::Windows::Web::WebErrorStatus;
using winrt::ZarvikWebViewRuntimeComponent::IJavaScriptBridge;

constexpr auto onUI = Object::Threads::ui;

/// The arguments of an event.
Making arguments() {
    return make(L"event arguments", onUI);
}

struct View {
    explicit View(Object* object) : object(object) {
        ++world()->controls;
        current = this;
    }
    ~View() {
        --world()->controls;
        current = current == this ? nullptr : current;
    }
    View(const View&) = delete;
    View& operator=(const View&) = delete;

    controls::WebView projection() { return project<controls::WebView>(*object); }

    /// Goes on in another turn, unless another navigation has begun.
    void later(std::function<void()> step) {
        uiThread().post([self = projection(), this, number = navigations->load(), step = std::move(step)] {
            if (*navigations == number) {
                step();
            }
        });
    }

    void finish(WebErrorStatus status) {
        loading = false;
        completed(projection(),
                  arguments()
                      .constant<METHOD(controls::IWebViewNavigationCompletedEventArgs, get_IsSuccess)>(
                          status == WebErrorStatus::Unknown)
                      .constant<METHOD(controls::IWebViewNavigationCompletedEventArgs, get_WebErrorStatus)>(
                          status));
    }

    /// Lets the events of a navigation follow, each in a turn of its own.
    void navigate(const foundation::Uri& uri, std::optional<std::size_t> historyEntry = {},
                  const IUriToStreamResolver& resolver = nullptr) {
        ++*navigations;
        loading = true;
        bridge = nullptr;
        later([=, this, number = navigations->load()] {
            const auto cancelled = std::make_shared<bool>(false);
            starting(projection(),
                     arguments()
                         .constant<METHOD(controls::IWebViewNavigationStartingEventArgs, get_Uri)>(uri)
                         .on<METHOD(controls::IWebViewNavigationStartingEventArgs, put_Cancel)>(
                             [cancelled](bool cancel) { *cancelled = cancel; }));
            if (*navigations != number || *cancelled) {
                return;
            }
            const auto failures = world()->unreachable;
            const auto failure = uri ? failures.find(textOf(uri)) : failures.end();
            if (failure != failures.end()) {
                later([this, status = failure->second] { finish(status); });
            } else if (resolver) {
                readLocal(uri, resolver);
            } else {
                show(uri, historyEntry);
            }
        });
    }

    /// The platform asks for the content on a thread of its own.
    winrt::fire_and_forget readLocal(foundation::Uri uri, IUriToStreamResolver resolver) {
        auto self = projection();
        const std::uint32_t number = *navigations;
        co_await winrt::resume_background();
        bool found = false;
        try {
            found = !contentOf(co_await resolver.UriToStreamAsync(uri)).empty();
        } catch (...) {
            // Then the page is not there.
        }
        uiThread().post([self = std::move(self), this, uri, number, found] {
            if (*navigations == number && found) {
                show(uri, {});
            } else if (*navigations == number) {
                finish(WebErrorStatus::NotFound);
            }
        });
    }

    void show(const foundation::Uri& uri, std::optional<std::size_t> historyEntry) {
        source = uri;
        hasPage = true;
        if (historyEntry) {
            position = *historyEntry;
        } else if (uri) {
            history.resize(history.empty() ? 0 : position + 1, nullptr);
            history.push_back(uri);
            position = history.size() - 1;
        }
        later([this] {
            contentLoading(projection(), arguments().also<controls::IWebViewContentLoadingEventArgs>());
            later([this] {
                domContentLoaded(projection(),
                                 arguments().also<controls::IWebViewDOMContentLoadedEventArgs>());
                later([this] { finish(WebErrorStatus::Unknown); });
            });
        });
    }

    /// The script runs at once; only its end can be elsewhere, where nothing of the control may be kept.
    foundation::IAsyncOperation<winrt::hstring> invoke(std::wstring name, std::wstring script) {
        world()->note(name + L": " + script);
        const EndOfOperation end;
        const auto answer = world()->scripts[script];
        const auto result = script.starts_with(L"innerWidth")
                                ? std::format(L"{}x{}{}", width, height, visible ? L"" : L" hidden")
                            : answer.current ? answer.current()
                                             : answer.result;
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
        co_return winrt::hstring(result);
    }

    template <typename Event>
    using Events = winrt::event<foundation::TypedEventHandler<controls::WebView, Event>>;

    Events<controls::WebViewNavigationStartingEventArgs> starting;
    Events<controls::WebViewContentLoadingEventArgs> contentLoading;
    Events<controls::WebViewDOMContentLoadedEventArgs> domContentLoaded;
    Events<controls::WebViewNavigationCompletedEventArgs> completed;
    Events<controls::WebViewNewWindowRequestedEventArgs> newWindow;
    Events<controls::WebViewPermissionRequestedEventArgs> permission;
    Events<controls::WebViewSeparateProcessLostEventArgs> processLost;

    Object* const object;
    double width = 0;
    double height = 0;
    bool visible = true;
    /// The number of the navigation under way or done.
    std::shared_ptr<std::atomic<std::uint32_t>> navigations = std::make_shared<std::atomic<std::uint32_t>>(0);
    bool loading = false;
    bool hasPage = false;
    std::vector<foundation::Uri> history;
    std::size_t position = 0;
    foundation::Uri source{nullptr};
    IJavaScriptBridge bridge{nullptr};

    static inline View* current = nullptr;
};

/// Lets an event of the view take handlers.
template <auto event, typename Interface, auto method>
void subscribe(const Making& object, const std::shared_ptr<View>& view) {
    using Handler = typename std::remove_reference_t<decltype((*view).*event)>::delegate_type;
    object.on<Interface, method>([view](const Handler& handler) { return ((*view).*event).add(handler); });
}

controls::WebView webViewControl() {
    const auto control = make(L"Windows.UI.Xaml.Controls.WebView", onUI);
    const auto view = std::make_shared<View>(winrt::com_ptr<Object>(control).get());
    control.holding(view)
        .on<METHOD(controls::IWebView, get_Source)>([view] { return view->source; })
        .on<METHOD(controls::IWebView, Navigate)>([view](const foundation::Uri& uri) { view->navigate(uri); })
        .on<METHOD(controls::IWebView, NavigateToString)>([view] { view->navigate(nullptr); });

    subscribe<&View::starting, METHOD(controls::IWebView2, add_NavigationStarting)>(control, view);
    subscribe<&View::contentLoading, METHOD(controls::IWebView2, add_ContentLoading)>(control, view);
    subscribe<&View::domContentLoaded, METHOD(controls::IWebView2, add_DOMContentLoaded)>(control, view);
    subscribe<&View::completed, METHOD(controls::IWebView2, add_NavigationCompleted)>(control, view);
    const auto step = [view](std::size_t entry) { view->navigate(view->history.at(entry), entry); };
    control.on<METHOD(controls::IWebView2, get_CanGoBack)>([view] { return view->position > 0; })
        .on<METHOD(controls::IWebView2, get_CanGoForward)>(
            [view] { return view->position + 1 < view->history.size(); })
        .on<METHOD(controls::IWebView2, GoBack)>([view, step] { step(view->position - 1); })
        .on<METHOD(controls::IWebView2, GoForward)>([view, step] { step(view->position + 1); })
        .on<METHOD(controls::IWebView2, Refresh)>([view] { view->navigate(view->source, view->position); })
        .on<METHOD(controls::IWebView2, Stop)>([view] {
            if (std::exchange(view->loading, false)) {
                ++*view->navigations;
                view->later([view] { view->finish(WebErrorStatus::OperationCanceled); });
            }
        })
        .on<METHOD(controls::IWebView2, CapturePreviewToStreamAsync)>(
            [view](const streams::IRandomAccessStream& stream) {
                return action([stream, width = view->width, height = view->height] {
                    ++world()->previews;
                    behind<Bytes>(stream) = pictureOf(width, height).file();
                });
            })
        .on<METHOD(controls::IWebView2, InvokeScriptAsync)>(
            [view](const winrt::hstring& name,
                   const foundation::Collections::IIterable<winrt::hstring>& arguments) {
                return view->invoke(std::wstring(name), std::wstring(*begin(arguments)));
            })
        .on<METHOD(controls::IWebView2, NavigateToLocalStreamUri)>(
            [view](const foundation::Uri& uri, const IUriToStreamResolver& resolver) {
                view->navigate(uri, {}, resolver);
            })
        .on<METHOD(controls::IWebView2, BuildLocalStreamUri)>(
            [](const winrt::hstring& identifier, const winrt::hstring& path) {
                const std::wstring relative(path);
                return uriOf(L"ms-local-stream://app_" + std::wstring(identifier) + L"/" +
                             relative.substr(relative.find_first_not_of(L'/')));
            })
        .on<METHOD(controls::IWebView2, put_DefaultBackgroundColor)>(
            [](winrt::impl::struct_Windows_UI_Color color) {
                world()->note(color.A ? L"opaque" : L"transparent");
            })
        .on<METHOD(controls::IWebView2, Focus)>([](std::int32_t) { return true; })
        .on<METHOD(controls::IWebView2, NavigateWithHttpRequestMessage)>(
            [view](const http::HttpRequestMessage& request) { view->navigate(request.RequestUri()); });

    subscribe<&View::newWindow, METHOD(controls::IWebView4, add_NewWindowRequested)>(control, view);
    subscribe<&View::permission, METHOD(controls::IWebView4, add_PermissionRequested)>(control, view);
    control.on<METHOD(controls::IWebView4, AddWebAllowedObject)>(
        [view](const winrt::hstring& name, const foundation::IInspectable& object) {
            check(name == L"_zarvikBridge", "another object was added to the page");
            view->bridge = object.as<IJavaScriptBridge>();
        });

    subscribe<&View::processLost, METHOD(controls::IWebView6, add_SeparateProcessLost)>(control, view);

    control.on<METHOD(xaml::IFrameworkElement, put_Width)>([view](double width) { view->width = width; })
        .on<METHOD(xaml::IFrameworkElement, put_Height)>([view](double height) { view->height = height; })
        .on<METHOD(xaml::IFrameworkElement, get_Width)>([view] { return view->width; })
        .on<METHOD(xaml::IFrameworkElement, get_Height)>([view] { return view->height; })
        .on<METHOD(xaml::IFrameworkElement, put_HorizontalAlignment)>([] {})
        .on<METHOD(xaml::IFrameworkElement, put_VerticalAlignment)>([] {})
        .on<METHOD(xaml::IFrameworkElement, get_Parent)>(
            [] { return world()->hasPanel ? appPanel() : nullptr; });

    control.on<METHOD(xaml::IUIElement, put_RenderTransform)>([] {})
        .on<METHOD(xaml::IUIElement, put_Visibility)>(
            [view](xaml::Visibility visibility) { view->visible = visibility == xaml::Visibility::Visible; });
    return control.also<xaml::IDependencyObject>();
}

}  // namespace

Factories webView() {
    return {
        {L"Windows.UI.Xaml.Controls.WebView",
         activating(webViewControl).on<METHOD(controls::IWebViewStatics4, ClearTemporaryWebDataAsync)>([] {
             return action([] { world()->note(L"data cleared"); });
         })}};
}

void requestPermission(controls::WebViewPermissionType type) {
    uiThread().run([&] {
        const controls::WebViewPermissionRequest request =
            make(L"permission request", onUI)
                .constant<METHOD(controls::IWebViewPermissionRequest, get_PermissionType)>(type)
                .on<METHOD(controls::IWebViewPermissionRequest, Allow)>([] { world()->note(L"allowed"); })
                .on<METHOD(controls::IWebViewPermissionRequest, Deny)>([] { world()->note(L"denied"); });
        View::current->permission(
            View::current->projection(),
            arguments()
                .constant<METHOD(controls::IWebViewPermissionRequestedEventArgs, get_PermissionRequest)>(
                    request));
    });
}

void requestNewWindow(const std::wstring& url) {
    uiThread().run([&] {
        View::current->newWindow(
            View::current->projection(),
            arguments()
                .constant<METHOD(controls::IWebViewNewWindowRequestedEventArgs, get_Uri)>(uriOf(url))
                .on<METHOD(controls::IWebViewNewWindowRequestedEventArgs, put_Handled)>(
                    [](bool handled) { check(handled, "the platform is to open a window"); }));
    });
}

}  // namespace app
