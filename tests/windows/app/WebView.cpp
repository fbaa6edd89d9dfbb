// The control, with a page behind it that knows nothing but what the test tells it.

#include "World.h"

namespace app {

namespace {

using winrt::Windows::Web::IUriToStreamResolver;
using winrt::Windows::Web::WebErrorStatus;
using winrt::ZarvikWebViewRuntimeComponent::IJavaScriptBridge;

constexpr auto onUI = Object::Threads::ui;

/// The arguments of any event that only tells where the page is.
template <typename Interface>
As<Interface> arguments() {
    return make<Interface>(L"event arguments", onUI);
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
        using I = controls::IWebViewNavigationCompletedEventArgs;
        loading = false;
        completed(projection(), arguments<I>()
                                    .constant<&Methods<I>::get_IsSuccess>(status == WebErrorStatus::Unknown)
                                    .constant<&Methods<I>::get_WebErrorStatus>(status));
    }

    /// Lets the events of a navigation follow, each in a turn of its own.
    void navigate(const foundation::Uri& uri, std::optional<std::size_t> historyEntry = {},
                  const IUriToStreamResolver& resolver = nullptr) {
        ++*navigations;
        loading = true;
        bridge = nullptr;
        later([=, this, number = navigations->load()] {
            using I = controls::IWebViewNavigationStartingEventArgs;
            const auto cancelled = std::make_shared<bool>(false);
            starting(projection(),
                     arguments<I>().constant<&Methods<I>::get_Uri>(uri).on<&Methods<I>::put_Cancel>(
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
            const Bytes content = contentOf(co_await resolver.UriToStreamAsync(uri));
            world()->note(L"content: " + std::wstring(content.begin(), content.end()));
            found = true;
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
            contentLoading(projection(), arguments<controls::IWebViewContentLoadingEventArgs>());
            later([this] {
                domContentLoaded(projection(), arguments<controls::IWebViewDOMContentLoadedEventArgs>());
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
template <auto event, auto method, typename Interface>
void subscribe(const As<Interface>& object, const std::shared_ptr<View>& view) {
    using Handler = typename std::remove_reference_t<decltype((*view).*event)>::delegate_type;
    object.template on<method>([view](const Handler& handler) { return ((*view).*event).add(handler); });
}

controls::WebView webViewControl() {
    using M = Methods<controls::IWebView>;
    const auto navigation = make<controls::IWebView>(L"Windows.UI.Xaml.Controls.WebView", onUI);
    const auto view = std::make_shared<View>(winrt::com_ptr<Object>(navigation).get());
    navigation.holding(view)
        .on<&M::get_Source>([view] { return view->source; })
        .on<&M::Navigate>([view](const foundation::Uri& uri) { view->navigate(uri); })
        .on<&M::NavigateToString>([view] { view->navigate(nullptr); });

    using C = Methods<controls::IWebView2>;
    const auto content = navigation.as<controls::IWebView2>();
    subscribe<&View::starting, &C::add_NavigationStarting>(content, view);
    subscribe<&View::contentLoading, &C::add_ContentLoading>(content, view);
    subscribe<&View::domContentLoaded, &C::add_DOMContentLoaded>(content, view);
    subscribe<&View::completed, &C::add_NavigationCompleted>(content, view);
    const auto step = [view](std::size_t entry) { view->navigate(view->history.at(entry), entry); };
    content.on<&C::get_CanGoBack>([view] { return view->position > 0; })
        .on<&C::get_CanGoForward>([view] { return view->position + 1 < view->history.size(); })
        .on<&C::GoBack>([view, step] { step(view->position - 1); })
        .on<&C::GoForward>([view, step] { step(view->position + 1); })
        .on<&C::Refresh>([view] { view->navigate(view->source, view->position); })
        .on<&C::Stop>([view] {
            if (std::exchange(view->loading, false)) {
                ++*view->navigations;
                view->later([view] { view->finish(WebErrorStatus::OperationCanceled); });
            }
        })
        .on<&C::CapturePreviewToStreamAsync>([view](const streams::IRandomAccessStream& stream) {
            return action([stream, width = view->width, height = view->height] {
                ++world()->previews;
                behind<Bytes>(stream) = pictureOf(width, height).file();
            });
        })
        .on<&C::InvokeScriptAsync>(
            [view](const winrt::hstring& name,
                   const foundation::Collections::IIterable<winrt::hstring>& arguments) {
                return view->invoke(std::wstring(name), std::wstring(*begin(arguments)));
            })
        .on<&C::NavigateToLocalStreamUri>(
            [view](const foundation::Uri& uri, const IUriToStreamResolver& resolver) {
                view->navigate(uri, {}, resolver);
            })
        .on<&C::BuildLocalStreamUri>([](const winrt::hstring& identifier, const winrt::hstring& path) {
            const std::wstring relative(path);
            return uriOf(L"ms-local-stream://app_" + std::wstring(identifier) + L"/" +
                         relative.substr(relative.find_first_not_of(L'/')));
        })
        .on<&C::put_DefaultBackgroundColor>([](winrt::impl::struct_Windows_UI_Color color) {
            world()->note(color.A ? L"opaque" : L"transparent");
        })
        .on<&C::Focus>([](std::int32_t) { return true; })
        .on<&C::NavigateWithHttpRequestMessage>(
            [view](const http::HttpRequestMessage& request) { view->navigate(request.RequestUri()); });

    using R = Methods<controls::IWebView4>;
    const auto requests = navigation.as<controls::IWebView4>();
    subscribe<&View::newWindow, &R::add_NewWindowRequested>(requests, view);
    subscribe<&View::permission, &R::add_PermissionRequested>(requests, view);
    requests.on<&R::AddWebAllowedObject>(
        [view](const winrt::hstring& name, const foundation::IInspectable& object) {
            check(name == L"_zarvikBridge", "another object was added to the page");
            view->bridge = object.as<IJavaScriptBridge>();
        });

    using L = Methods<controls::IWebView6>;
    subscribe<&View::processLost, &L::add_SeparateProcessLost>(navigation.as<controls::IWebView6>(), view);

    using F = Methods<xaml::IFrameworkElement>;
    navigation.as<xaml::IFrameworkElement>()
        .on<&F::put_Width>([view](double width) { view->width = width; })
        .on<&F::put_Height>([view](double height) { view->height = height; })
        .on<&F::get_Width>([view] { return view->width; })
        .on<&F::get_Height>([view] { return view->height; })
        .on<&F::put_HorizontalAlignment>([] {})
        .on<&F::put_VerticalAlignment>([] {})
        .on<&F::get_Parent>([] { return world()->hasPanel ? appPanel() : nullptr; });

    using E = Methods<xaml::IUIElement>;
    navigation.as<xaml::IUIElement>().on<&E::put_RenderTransform>([] {}).on<&E::put_Visibility>(
        [view](xaml::Visibility visibility) { view->visible = visibility == xaml::Visibility::Visible; });
    navigation.as<xaml::IDependencyObject>();
    return navigation;
}

}  // namespace

Factories webView() {
    using Activation = foundation::IActivationFactory;
    using I = controls::IWebViewStatics4;
    return {{L"Windows.UI.Xaml.Controls.WebView", [] {
                 return make<Activation>(L"factory")
                     .on<&Methods<Activation>::ActivateInstance>(
                         []() -> foundation::IInspectable { return webViewControl(); })
                     .as<I>()
                     .on<&Methods<I>::ClearTemporaryWebDataAsync>(
                         [] { return action([] { world()->note(L"data cleared"); }); });
             }}};
}

void requestPermission(controls::WebViewPermissionType type) {
    using I = controls::IWebViewPermissionRequestedEventArgs;
    using Request = controls::IWebViewPermissionRequest;
    uiThread().run([&] {
        const controls::WebViewPermissionRequest request =
            make<Request>(L"permission request", onUI)
                .constant<&Methods<Request>::get_PermissionType>(type)
                .on<&Methods<Request>::Allow>([] { world()->note(L"allowed"); })
                .on<&Methods<Request>::Deny>([] { world()->note(L"denied"); });
        View::current->permission(View::current->projection(),
                                  arguments<I>().constant<&Methods<I>::get_PermissionRequest>(request));
    });
}

void requestNewWindow(const std::wstring& url) {
    using I = controls::IWebViewNewWindowRequestedEventArgs;
    uiThread().run([&] {
        View::current->newWindow(View::current->projection(),
                                 arguments<I>()
                                     .constant<&Methods<I>::get_Uri>(uriOf(url))
                                     .on<&Methods<I>::put_Handled>([](bool handled) {
                                         check(handled, "the platform is to open a window");
                                     }));
    });
}

}  // namespace app
