#include "PageTest.h"

#include <winrt/ZarvikWebViewRuntimeComponent.h>

#include <iomanip>
#include <thread>

using namespace std::chrono_literals;
using winrt::hstring;
using winrt::Windows::Foundation::Uri;

namespace {

constexpr auto patience = 30s;

}  // namespace

void PrintTo(Answer const& answer, std::ostream* stream) {
    *stream << std::hex << std::setw(8) << std::setfill('0') << static_cast<unsigned>(answer.code.value)
            << " " << winrt::to_string(answer.text.substr(0, 300));
}

bool PageTest::comesTrue(std::function<bool()> const& condition) {
    auto const limit = std::chrono::steady_clock::now() + patience;
    while (!onUIThread(condition)) {
        if (std::chrono::steady_clock::now() > limit) {
            return false;
        }
        std::this_thread::sleep_for(2ms);
    }
    return true;
}

char const* const PageTest::hostileScript = R"(
    const nothing = () => { throw new Error('hostile') };
    const {ownKeys} = Reflect;
    const types = [Array, String, Object, Function, Promise, Symbol, Proxy, Reflect, JSON, Document, Event,
                   CustomEvent, EventTarget, RegExp, Map, console];
    for (let i = 0; i < types.length; i++) {
        const owners = [types[i], types[i].prototype];
        for (let j = 0; j < 2; j++) {
            const keys = owners[j] ? ownKeys(owners[j]) : [];
            for (let k = 0; k < keys.length; k++) {
                try { owners[j][keys[k]] = nothing } catch { }
            }
        }
    }
    delete window.JSON;
    delete window.Promise;
    delete window.Reflect;
    delete window.console;
    window.eval = () => 'replaced';
    window.String = window.Object = window.Error = window.TypeError = nothing;
)";

PageTest::WebView PageTest::makeView() {
    return onUIThread([] {
        WebView const view;
        view.Width(200);
        view.Height(100);
        return view;
    });
}

std::string PageTest::ending(WebView const& view, std::function<void()> const& start) {
    auto const end = std::make_shared<std::string>();
    onUIThread([&] {
        view.NavigationCompleted([end](auto const&, auto const& arguments) {
            if (end->empty()) {
                *end = arguments.IsSuccess() ? "success"
                                             : std::to_string(static_cast<int>(arguments.WebErrorStatus()));
            }
        });
        start();
    });
    return comesTrue([&] { return !end->empty(); }) ? *end : "no end";
}

void PageTest::load(WebView const& view, std::string const& url) {
    ASSERT_EQ(ending(view, [&] { view.Navigate(Uri(winrt::to_hstring(url))); }), "success") << url;
}

void PageTest::loadText(WebView const& view, std::wstring const& html) {
    ASSERT_EQ(ending(view, [&] { view.NavigateToString(html); }), "success");
}

Answer PageTest::call(WebView const& view, std::wstring const& function, std::wstring const& argument) {
    auto answer = startCall(view, function, argument);
    return wait(answer);
}

Answer PageTest::eval(WebView const& view, std::wstring const& text) {
    return call(view, L"eval", text);
}

std::future<Answer> PageTest::startCall(WebView const& view, std::wstring const& function,
                                        std::wstring const& argument) {
    auto const answer = std::make_shared<std::promise<Answer>>();
    onUIThread([&] {
        [](auto operation, auto answer) -> winrt::fire_and_forget {
            try {
                auto const text = co_await operation;
                EXPECT_TRUE(runtime::ui_thread::is_current());
                answer->set_value({std::wstring(text), S_OK});
            } catch (winrt::hresult_error const& error) {
                answer->set_value({std::wstring(error.message()), error.code()});
            }
        }(view.InvokeScriptAsync(function, {hstring(argument)}), answer);
    });
    return answer->get_future();
}

Answer PageTest::wait(std::future<Answer>& answer) {
    if (answer.wait_for(patience) != std::future_status::ready) {
        ADD_FAILURE() << "the call does not end";
        return {};
    }
    return answer.get();
}

std::shared_ptr<PageTest::Texts> PageTest::addBridges(WebView const& view) {
    auto messages = std::make_shared<Texts>();
    onUIThread([&] {
        view.NavigationStarting([messages, navigation = 0](auto const& sender, auto const&) mutable {
            winrt::ZarvikWebViewRuntimeComponent::JavaScriptBridge const bridge;
            bridge.MessageEmitted([messages, number = ++navigation](hstring const& message) {
                messages->push_back(std::to_string(number) + ":" + winrt::to_string(message));
            });
            sender.AddWebAllowedObject(L"bridge", bridge);
        });
    });
    return messages;
}
