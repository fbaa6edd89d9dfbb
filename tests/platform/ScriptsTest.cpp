#include <chrono>

#include "PageTest.h"
#include "element_tree.h"
#include "web_view.h"

using namespace std::chrono_literals;
using namespace std::string_literals;
using winrt::Windows::Foundation::Uri;

namespace {

/// What the evaluation of a text gives as a text, errors included: a function that an application gives to
/// its pages.
constexpr auto evalToString =
    LR"(window.evalToString = function(js) {
    try {
        return new String(eval(js)).toString();
    } catch (error) {
        return error.toString();
    }
};)";

}  // namespace

class ScriptsTest : public PageTest {
  protected:
    /// The text that a call gives; a failure is shown as such.
    static std::wstring textOf(Answer const& answer) {
        return answer.code == S_OK ? answer.text
                                   : L"failed " + std::to_wstring(answer.code.value) + L" " + answer.text;
    }

    static std::wstring evalText(WebView const& view, std::wstring const& text) {
        return textOf(eval(view, text));
    }
    static std::wstring callText(WebView const& view, std::wstring const& name, std::wstring const& text) {
        return textOf(call(view, name, text));
    }

    /// Starts evaluations within one turn of the user-interface thread.
    static std::vector<std::future<Answer>> startTogether(WebView const& view,
                                                          std::vector<std::wstring> const& texts) {
        return onUIThread([&] {
            std::vector<std::future<Answer>> answers;
            for (auto const& text : texts) {
                answers.push_back(startCall(view, L"eval", text));
            }
            return answers;
        });
    }

    /// Serves a document with a content security policy.
    void pageWithPolicy(std::string const& path, std::string const& policy, std::string const& body) {
        server.on(path, [policy, body](const auto&, auto& response) {
            response.set_header("Content-Security-Policy", policy);
            response.set_content("<!doctype html>" + body, "text/html");
        });
    }
};

TEST_F(ScriptsTest, TellsResultsAndFailuresApart) {
    server.page("/", "<title>page</title><script>var number = 7</script>");
    auto const view = makeView();
    EXPECT_EQ(eval(view, L"'early'").code, E_ILLEGAL_METHOD_CALL);
    load(view, server.url("/"));

    EXPECT_EQ(evalText(view, L"var made = document.title; made"), L"page");
    EXPECT_EQ(evalText(view, L"const once = made; once"), L"page");
    EXPECT_EQ(evalText(view, L"const once = 'again'; once"), L"again");
    EXPECT_EQ(evalText(view, L"'use strict'; try { undeclared = 1; 'sloppy' } catch { 'strict' }"),
              L"strict");

    for (auto const* text : {L"1", L"true", L"null", L"undefined", L"({})", L"new String('x')", L"[]",
                             L"Symbol()", L"10n", L"document.body", L"Promise.resolve('x')",
                             L"({then(settle) { settle('x') }})", L"({get then() { throw 'x' }})"}) {
        EXPECT_EQ(evalText(view, text), L"") << text;
    }
    for (auto const* text : {L"throw 'x'", L"throw null", L"nothing.at.all", L"syntax error", L"}{",
                             L"throw {toString() { throw this }}", L"throw {toString: 1}"}) {
        EXPECT_EQ(eval(view, text).code, scriptThrew) << text;
    }
    EXPECT_EQ(eval(view, L"throw new RangeError('the reason')"),
              (Answer{L"RangeError: the reason", scriptThrew}));
    for (auto const* name : {L"missing", L"number", L"document.write", L""}) {
        EXPECT_EQ(call(view, name, L"x").code, DISP_E_UNKNOWNNAME) << name;
    }
}

TEST_F(ScriptsTest, KeepsEveryCharacter) {
    auto const view = makeView();
    loadText(view,
             L"<script>function echo(text) { return text } function length(text) { return text.length + '' "
             L"}</script>");
    auto const special = L"\0 \r\n\t \" ' ` \\ ${1} \u2028 \u2029 \ufeff \U0001F600 \0"s;
    EXPECT_EQ(callText(view, L"echo", special), special);
    EXPECT_EQ(callText(view, L"length", special), std::to_wstring(special.size() + 1));  // one surrogate
    EXPECT_EQ(callText(view, L"echo", std::wstring(L"a") + wchar_t{0xD800} + L"b"), L"a\ufffdb");
    EXPECT_EQ(evalText(view, L"'a\\ud800b' + '\\udc00'"), L"a\ufffdb\ufffd");
    EXPECT_EQ(eval(view, L"throw 'a\\ud800b'"), (Answer{L"a\ufffdb", scriptThrew}));
    EXPECT_EQ(evalText(view, L"'\0'.length + ''"s), L"1");

    std::wstring const large(1 << 20, L'\u00e4');
    EXPECT_TRUE(callText(view, L"echo", large) == large);
    EXPECT_EQ(evalText(view, L"/*" + large + L"*/ 'x'.repeat(3)"), L"xxx");
}

// The page serves promises and observers of one call before the next one runs, and each may do what takes a
// user's action. What was done to the view before has reached the page, and what the page sends meanwhile is
// there before the answer.
TEST_F(ScriptsTest, AreTasksOfTheirOwn) {
    auto const view = makeView();
    auto const sent = addBridges(view);
    loadText(view,
             LR"(<script>
        let seen = [];
        const note = (text) => seen.push(text);
        new MutationObserver(() => note('change')).observe(document.documentElement, {attributes: true});
        addEventListener('click', () => note('click'), true);
        const act = (name) => {
            note(name);
            Promise.resolve().then(() => note('then')).then(() => note('after'));
            queueMicrotask(() => note('micro'));
            document.documentElement.title = name;
            bridge.postMessage(name);
            return navigator.userActivation.isActive + seen.join();
        };
    </script>)");
    auto answers = startTogether(view, {L"act('1')", L"act('2')", L"''", L"act('3')"});
    std::wstring const served = L"then,micro,change,after";
    EXPECT_EQ(textOf(wait(answers[0])), L"true1");
    EXPECT_EQ(textOf(wait(answers[1])), L"true1," + served + L",2");
    EXPECT_EQ(textOf(wait(answers[3])), L"true1," + served + L",2," + served + L",3");

    auto const other = makeView();
    loadText(other, L"<title>other</title>");
    for (auto const& focused : {other, view, other}) {
        auto answer = onUIThread([&] {
            focused.Focus(winrt::Windows::UI::Xaml::FocusState::Programmatic);
            return startCall(focused, L"eval", L"String(document.hasFocus())");
        });
        EXPECT_EQ(textOf(wait(answer)), L"true");
    }

    for (int i = 0; i < 200; ++i) {
        onUIThread([&] { sent->clear(); });
        EXPECT_EQ(evalText(view, L"bridge.postMessage('a'); bridge.postMessage('b'); ''"), L"");
        ASSERT_EQ(onUIThread([&] { return *sent; }), (std::vector<std::string>{"1:a", "1:b"}));
    }
}

TEST_F(ScriptsTest, WorkInPagesThatForbidEvaluation) {
    std::string const body = R"(<title>strict</title><script nonce="n">
        const attempt = () => { try { return String(eval('1 + 1')) } catch (error) { return error.name } };
        const before = attempt();
        function report() { return [before, attempt(), eval === original].join() }
        const original = eval;
        function keep(text) { window.kept = eval; return kept(text) }
        function useKept() { try { return String(kept('1 + 1')) } catch (error) { return error.name } }
        function failing() { throw new Error('x') }
    </script>)";
    pageWithPolicy("/nonce", "script-src 'nonce-n'", body);
    pageWithPolicy("/sandbox", "sandbox allow-scripts; script-src 'nonce-n'", body);
    pageWithPolicy("/types", "require-trusted-types-for 'script'; script-src 'nonce-n'", body);
    server.page("/meta", "<meta http-equiv=Content-Security-Policy content=\"script-src 'nonce-n'\">" + body);
    auto const view = makeView();
    for (auto const* path : {"/nonce", "/sandbox", "/types", "/meta"}) {
        SCOPED_TRACE(path);
        load(view, server.url(path));
        EXPECT_EQ(evalText(view, evalToString), L"");
        EXPECT_EQ(callText(view, L"evalToString", L"const a = 6; var b = a * 7; b // the end"), L"42");
        EXPECT_EQ(callText(view, L"evalToString", L"throw new TypeError('x')"), L"TypeError: x");
        EXPECT_TRUE(callText(view, L"evalToString", L"no syntax").starts_with(L"SyntaxError: "));
        EXPECT_EQ(evalText(view, L"try { eval('void 1'); 'open' } catch (error) { error.name }"),
                  L"EvalError");
        EXPECT_EQ(evalText(view, L"b + ''"), L"42");
        EXPECT_EQ(callText(view, L"keep", L"document.title"), L"strict");
        EXPECT_EQ(call(view, L"failing", L"").code, scriptThrew);
        EXPECT_EQ(callText(view, L"useKept", L""), L"EvalError");
        EXPECT_EQ(evalText(view, L"report()"), L"EvalError,EvalError,true");
    }
}

TEST_F(ScriptsTest, SurviveHostilePages) {
    server.page("/", "<script>" + std::string(hostileScript) +
                         "var isHostile = 'yes'; function plain(text) { return text }</script>");
    server.page("/getter", R"(<script>
        let count = 0;
        Object.defineProperty(window, 'trap', {get() { throw new Error('trap ' + ++count) }});
        Object.defineProperty(window, 'other', {get() { return () => 'call ' + ++count }});
        Object.defineProperty(window, 'eval', {value: () => 'frozen', writable: false});
        Object.prototype.then = function(settle) { settle('forged') };
        Object.defineProperty(Object.prototype, 'toJSON', {value: () => 'forged'});
        function proxy() { return new Proxy(() => 'x', {get() { throw 1 }}) }
    </script>)");
    auto const view = makeView();
    auto const bystander = makeView();
    loadText(bystander, L"<title>bystander</title>");
    load(view, server.url("/"));
    EXPECT_EQ(evalText(view, L"isHostile"), L"yes");
    EXPECT_EQ(callText(view, L"plain", L"as it was"), L"as it was");
    EXPECT_EQ(evalText(view, L"'x' + 1"), L"x1");
    EXPECT_EQ(eval(view, L"throw 'x'"), (Answer{L"x", scriptThrew}));
    load(view, server.url("/getter"));
    EXPECT_EQ(call(view, L"trap", L"").code, scriptThrew);
    EXPECT_EQ(callText(view, L"other", L""), L"call 2");
    EXPECT_EQ(callText(view, L"proxy", L""), L"");
    EXPECT_EQ(evalText(view, L"'x' + 1"), L"x1");
    EXPECT_EQ(evalText(bystander, L"document.title"), L"bystander");

    // A document that is written anew, and one with elements that are called as something in the other world.
    loadText(view, L"<form id=run></form><form id=answer></form><img id=runTasks><img id=page>");
    EXPECT_EQ(evalText(view, L"'x' + document.images.length"), L"x2");
    EXPECT_EQ(
        evalText(view, L"document.open(); document.write('<title>new</title>'); document.close(); 'written'"),
        L"written");
    EXPECT_EQ(evalText(view, L"document.title"), L"new");
}

// Whatever a page can see while a function of its own runs belongs to its own world: nothing leads to the
// world from which it is called.
TEST_F(ScriptsTest, DoNotShowPagesTheCallersWorld) {
    std::string const body = R"(<script nonce="n">
        var seen = [];
        const look = (value, name) => {
            for (let depth = 0; value !== null && value !== undefined && depth < 5; depth++) {
                const type = value.constructor;
                if (typeof type === 'function' && type.constructor !== Function) {
                    seen.push(name);
                }
                value = Object.getPrototypeOf(Object(value));
            }
        };
        function probe() {
            look(arguments, 'arguments');
            look(probe.caller, 'caller');
            look(eval, 'eval');
            for (const attempt of [() => eval('nothing.at.all'), () => eval('}'), () => eval(),
                                   () => eval({}), () => eval(Symbol()), () => new eval()]) {
                try { look(attempt(), 'result'); } catch (error) { look(error, 'error of ' + attempt) }
            }
            try { (function deeper() { try { deeper() } finally { eval('1') } })() }
            catch (error) { look(error, 'overflow') }
            return 'probed';
        }
    </script>)";
    pageWithPolicy("/strict", "script-src 'nonce-n'", body);
    server.page("/", body);
    auto const view = makeView();
    for (auto const* path : {"/", "/strict"}) {
        SCOPED_TRACE(path);
        load(view, server.url(path));
        EXPECT_EQ(callText(view, L"probe", L"x"), L"probed");
        EXPECT_EQ(evalText(view, L"[...new Set(seen)].join()"), L"");
        EXPECT_EQ(evalText(view,
                           L"[typeof page, typeof evaluate, typeof runTasks, typeof answer, typeof run, "
                           L"typeof webkit].filter(type => type !== 'undefined').join()"),
                  L"");
    }
}

TEST_F(ScriptsTest, FailWhenTheirPageGoes) {
    server.page("/", "<title>first</title><script>function loop() { while (true) {} }</script>");
    server.page("/next", "<title>next</title>");
    auto const view = makeView();

    // What is called before a navigation still reaches the page that goes.
    for (int i = 0; i < 20; ++i) {
        load(view, server.url("/"));
        auto const number = std::to_wstring(i);
        std::future<Answer> last;
        ASSERT_EQ(ending(view,
                         [&] {
                             last = startCall(view, L"eval", L"sessionStorage.last = '" + number + L"'");
                             view.Navigate(Uri(winrt::to_hstring(server.url("/next"))));
                         }),
                  "success");
        EXPECT_EQ(textOf(wait(last)), number);
        EXPECT_EQ(evalText(view, L"sessionStorage.last"), number);
    }

    // A page in an endless loop, whose process is ended: what had ended before is answered before.
    load(view, server.url("/"));
    std::vector<std::wstring> texts(600, L"document.title");
    texts.insert(texts.end(), {L"'x'.repeat(3000000)", L"loop()", L"'after'"});
    auto answers = startTogether(view, texts);
    auto queued = startCall(view, L"eval", L"'queued'");
    for (size_t i = 0; i < 600; ++i) {
        ASSERT_EQ(textOf(wait(answers[i])), L"first");
    }
    EXPECT_EQ(textOf(wait(answers[600])).size(), 3000000U);
    EXPECT_EQ(answers[601].wait_for(100ms), std::future_status::timeout);
    onUIThread([&] {
        webkit_web_view_terminate_web_process(runtime::object_of<runtime::web_view_object>(view).view());
    });
    EXPECT_EQ(wait(answers[601]).code, RPC_E_DISCONNECTED);
    EXPECT_EQ(wait(answers[602]).code, RPC_E_DISCONNECTED);
    EXPECT_EQ(wait(queued).code, RPC_E_DISCONNECTED);
    EXPECT_EQ(eval(view, L"'no page'").code, E_ILLEGAL_METHOD_CALL);
    load(view, server.url("/next"));
    EXPECT_EQ(evalText(view, L"document.title"), L"next");

    // A view that goes away.
    auto other = makeView();
    load(other, server.url("/"));
    auto last = startCall(other, L"loop", L"");
    other = nullptr;
    EXPECT_EQ(wait(last).code, RPC_E_DISCONNECTED);
}
