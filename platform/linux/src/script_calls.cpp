#include "script_calls.h"

#include <nlohmann/json.hpp>

#include "glib_ptr.h"
#include "page_world.h"
#include "script_text.h"
#include "ui_thread.h"

namespace runtime {

namespace {

/// What the engine's script hosts report for a script that threw.
constexpr winrt::hresult script_threw = static_cast<HRESULT>(0x80020101U);

/// First character of what the script below answers.
constexpr char returned = 'r';
constexpr char threw = 't';
constexpr char missing = 'm';

std::exception_ptr error(winrt::hresult code, winrt::param::hstring const& message) {
    return std::make_exception_ptr(winrt::hresult_error(code, message));
}

void end(script_calls::operation& operation, std::string_view answer) {
    auto const kind = answer.empty() ? '\0' : answer.front();
    auto const text = std::string(answer.substr(answer.empty() ? 0 : 1));
    switch (kind) {
        case returned:
            return operation.complete(winrt::to_hstring(text));
        case threw:
            return operation.fail(error(script_threw, winrt::to_hstring(text)));
        case missing:
            return operation.fail(
                error(DISP_E_UNKNOWNNAME, winrt::to_hstring("The page has no function " + text)));
        default:
            return operation.fail(error(E_ILLEGAL_METHOD_CALL, L"The page is not ready for scripts yet."));
    }
}

}  // namespace

// Pages may have replaced whatever is theirs, so all of this runs in the other world and takes from the page
// only its function. Nothing of this world may become visible to the page: not as an argument, not as an
// exception (hence `open`, which makes functions of the page's world), not as the caller of a strict
// function.
//
// A page that forbids evaluation does so for the functions too that it was given by a call. While one of them
// is called, `eval` is another function there. Declarations of an evaluated text are local to it, hence the
// block.
char const* const script_calls::script = R"((() => {
    'use strict';
    if (window.invoke) {
        window.reopened = true;  // document.open() runs the scripts of a document's start once more
        return;
    }
    const {page, evaluate} = window;
    const pageEval = page.eval;
    const open = evaluate(`((evaluate, EvalError) => () => {
        let isOpen = true;
        return {
            run(text) {
                if (!isOpen) {
                    throw new EvalError('The call that allowed evaluation has ended.');
                }
                return typeof text === 'string' ? evaluate('{' + text + '\\n}') : text;
            },
            close() {
                isOpen = false;
            }
        };
    })`)(evaluate, page.EvalError);

    let forbidden = false;
    const forbidsEvaluation = () => {
        if (!forbidden) {
            try {
                pageEval('void 0');
            } catch {
                forbidden = true;
            }
        }
        return forbidden;
    };
    const callWithEval = (target, texts) => {
        const {run, close} = open();
        const own = page.eval;
        page.eval = run;
        try {
            return Reflect.apply(target, page, texts);
        } finally {
            close();
            if (page.eval === run) {
                page.eval = own;
            }
        }
    };
    const describe = (error) => {
        try {
            return String(error).toWellFormed();
        } catch {
            return '';
        }
    };
    window.invoke = (call) => {
        try {
            const [name, ...texts] = JSON.parse(call);
            let result;
            if (name === 'eval') {
                result = forbidsEvaluation() ? open().run(texts[0]) : pageEval(texts[0]);
            } else {
                const target = page[name];
                if (typeof target !== 'function') {
                    return 'm' + name;
                }
                result = forbidsEvaluation() ? callWithEval(target, texts) : Reflect.apply(target, page, texts);
            }
            return typeof result === 'string' ? 'r' + result.toWellFormed() : 'r';
        } catch (error) {
            return 't' + describe(error);
        }
    };
})())";

struct script_calls::pending_call {
    std::shared_ptr<script_calls*> owner;
    std::shared_ptr<operation> ending;
};

script_calls::script_calls(WebKitWebView* view) : view(view), self(std::make_shared<script_calls*>(this)) {
    g_signal_connect(view, "load-changed", G_CALLBACK(on_load_changed), this);
    g_signal_connect(view, "web-process-terminated", G_CALLBACK(on_terminated), this);
}

script_calls::~script_calls() {
    *self = nullptr;
    g_signal_handlers_disconnect_by_data(view, this);
    // Later, since those who wait may do anything.
    ui_thread::instance().post([calls = std::move(pending)] {
        for (auto const& call : calls) {
            call->fail(error(RPC_E_DISCONNECTED, L"The web view was closed during the call."));
        }
    });
}

std::shared_ptr<script_calls::operation> script_calls::call(std::string const& name,
                                                            std::vector<std::string> const& arguments) {
    auto result = std::make_shared<operation>();
    if (!has_page) {
        result->fail(error(E_ILLEGAL_METHOD_CALL, L"No page is loaded in the web view."));
        return result;
    }
    // As JSON, for the engine's own parameters end at a NUL.
    auto call = nlohmann::json::array({name});
    for (auto const& argument : arguments) {
        call.push_back(argument);
    }
    GVariantDict parameters;
    g_variant_dict_init(&parameters, nullptr);
    g_variant_dict_insert_value(&parameters, "call", g_variant_new_string(call.dump().c_str()));
    pending.push_back(result);
    webkit_web_view_call_async_javascript_function(view, "return window.invoke ? invoke(call) : ''", -1,
                                                   g_variant_dict_end(&parameters), page_world, nullptr,
                                                   nullptr, on_answer, new pending_call{self, result});
    return result;
}

void script_calls::on_answer(GObject* view, GAsyncResult* result, gpointer data) {
    std::unique_ptr<pending_call> const call(static_cast<pending_call*>(data));
    glib_error failure;
    auto const value = gobject_ptr<JSCValue>::adopt(
        webkit_web_view_call_async_javascript_function_finish(WEBKIT_WEB_VIEW(view), result, failure.put()));
    if (auto* const owner = *call->owner) {
        // Its place is the first one, unless it was cut off before.
        if (!owner->pending.empty() && owner->pending.front() == call->ending) {
            owner->pending.pop_front();
        }
    }
    if (value) {
        end(*call->ending, text_of(value.get()));
    } else {
        bool const in_page = failure.matches(WEBKIT_JAVASCRIPT_ERROR, WEBKIT_JAVASCRIPT_ERROR_SCRIPT_FAILED);
        call->ending->fail(
            error(in_page ? E_FAIL : RPC_E_DISCONNECTED, winrt::to_hstring(failure.message())));
    }
}

void script_calls::on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
    if (event == WEBKIT_LOAD_COMMITTED) {
        auto* const self = static_cast<script_calls*>(data);
        self->has_page = true;
        // What ran in the old page was answered before.
        self->cut_off(E_ABORT, L"The page went away during the call.");
    }
}

void script_calls::on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer data) {
    auto* const self = static_cast<script_calls*>(data);
    self->has_page = false;
    self->cut_off(RPC_E_DISCONNECTED, L"The page's process ended during the call.");
}

void script_calls::cut_off(winrt::hresult code, wchar_t const* message) {
    for (auto const& call : std::exchange(pending, {})) {
        call->fail(error(code, message));
    }
}

}  // namespace runtime
