#include "PageTest.h"

#include <iomanip>
#include <thread>

#include "element_tree.h"
#include "web_view.h"

using namespace std::chrono_literals;
using winrt::hstring;
using winrt::Windows::Foundation::Uri;

namespace {

constexpr auto patience = 30s;

winrt::fire_and_forget settle(winrt::Windows::Foundation::IAsyncOperation<hstring> operation,
                              std::function<void(std::wstring, winrt::hresult)> end) {
    try {
        auto const text = co_await operation;
        EXPECT_TRUE(runtime::ui_thread::is_current());
        end(std::wstring(text), S_OK);
    } catch (winrt::hresult_error const& error) {
        end(std::wstring(error.message()), error.code());
    }
}

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
        settle(
            view.InvokeScriptAsync(function, {hstring(argument)}),
            [answer](std::wstring text, winrt::hresult code) { answer->set_value({std::move(text), code}); });
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

void PageTest::killPageProcess(WebView const& view) {
    onUIThread([&] {
        webkit_web_view_terminate_web_process(runtime::object_of<runtime::web_view_object>(view).view());
    });
}
