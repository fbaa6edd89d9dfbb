#include "script_calls.h"

#include <gio/gunixfdlist.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "glib_ptr.h"
#include "page_world.h"
#include "ui_thread.h"

namespace runtime {

namespace {

/// What the engine's script hosts report for a script that threw.
constexpr winrt::hresult script_threw = static_cast<HRESULT>(0x80020101U);

/// The priority of the engine's own work in the loop. What joins it runs after it, so pages hear of what was
/// done to their view before they are called: of the focus, for one.
constexpr int behind_engine = G_PRIORITY_DEFAULT + 1;

/// How often answers are looked for that calls after them may hold up.
constexpr guint tick_ms = 20;

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
            return operation.fail(error(E_FAIL, L"The page's process gave an answer that makes no sense."));
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
    if (window.run) {
        window.reopened = true;  // document.open() runs the scripts of a document's start once more
        return;
    }
    const {page, evaluate, runTasks, answer, stayAwake} = window;
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
    const invoke = (name, texts) => {
        try {
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

    // Tasks, so that what a call asks of promises is done before the next call; the last one needs none. The
    // element is in no document.
    const element = document.createElementNS('http://www.w3.org/1999/xhtml', 'div');
    let calls;
    const runNext = () => {
        const [number, name, ...texts] = calls.next().value;
        answer(number, invoke(name, texts));
    };
    element.addEventListener('click', runNext);
    window.run = (batch, othersFollow) => {
        calls = batch.values();
        if (batch.length > 1) {
            runTasks(element, batch.length - 1);
        }
        runNext();
        if (othersFollow) {
            stayAwake();
        }
    };
})())";

/// What one script has the page run.
struct script_calls::batch {
    std::shared_ptr<script_calls*> owner;
    uint64_t last;
};

script_calls::script_calls(WebKitWebView* view) : view(view), self(std::make_shared<script_calls*>(this)) {
    g_signal_connect(view, "decide-policy", G_CALLBACK(on_decide_policy), this);
    g_signal_connect(view, "load-changed", G_CALLBACK(on_load_changed), this);
    g_signal_connect(view, "web-process-terminated", G_CALLBACK(on_terminated), this);
}

script_calls::~script_calls() {
    *self = nullptr;
    g_signal_handlers_disconnect_by_data(view, this);
    for (auto const source : {turn_end, ticking}) {
        if (source) {
            g_source_remove(source);
        }
    }
    // Later, since those who wait may do anything.
    ui_thread::instance().post([calls = std::move(pending)] {
        for (auto const& call : calls) {
            call.ending->fail(error(RPC_E_DISCONNECTED, L"The web view was closed during the call."));
        }
    });
}

std::shared_ptr<script_calls::operation> script_calls::call(std::string const& name,
                                                            std::vector<std::string> const& arguments) {
    auto result = std::make_shared<operation>();
    if (!answers) {
        result->fail(error(E_ILLEGAL_METHOD_CALL, L"No page is loaded in the web view."));
        return result;
    }
    pending.push_back({++last_number, result});
    auto call = nlohmann::json::array({last_number, name});
    for (auto const& argument : arguments) {
        call.push_back(argument);
    }
    unsent += call.dump() + ',';
    if (!turn_end) {
        turn_end = g_idle_add_full(behind_engine, on_turn_end, this, nullptr);
    }
    return result;
}

gboolean script_calls::on_turn_end(gpointer data) {
    auto* const self = static_cast<script_calls*>(data);
    self->turn_end = 0;
    self->send();
    return G_SOURCE_REMOVE;
}

// A page that is about to leave gets first what was called before.
gboolean script_calls::on_decide_policy(WebKitWebView*, WebKitPolicyDecision*, WebKitPolicyDecisionType,
                                        gpointer self) {
    static_cast<script_calls*>(self)->send();
    return FALSE;  // others decide
}

void script_calls::send() {
    if (unsent.empty()) {
        return;
    }
    bool const others_follow = one_follows_another();
    auto const script =
        "window.run?.([" + std::exchange(unsent, {}) + "]," + (others_follow ? "true" : "false") + ")";
    webkit_web_view_evaluate_javascript(view, script.data(), static_cast<gssize>(script.size()), page_world,
                                        nullptr, nullptr, on_ran, new batch{self, last_number});
    running.push_back(last_number);
    if (others_follow) {
        loop.stay_awake();
    }
    if (!ticking) {
        ticking = g_timeout_add(tick_ms, on_tick, this);
    }
}

/// Whether somebody awaits each answer and calls again at once: then neither side's loop sleeps in between.
/// Input for each frame of an animation is far from that.
bool script_calls::one_follows_another() const {
    constexpr int64_t at_once_us = 300;
    return pending.size() == 1 && g_get_monotonic_time() - last_ran < at_once_us;
}

// A page tells that it has run a batch, and what it had sent before has then arrived. Nobody tells that it is
// held up by one of the calls: then the answers of those before are taken here, when they have waited for a
// while, so that what was sent before them is here, too.
gboolean script_calls::on_tick(gpointer data) {
    auto* const self = static_cast<script_calls*>(data);
    auto const owner = self->self;
    self->take_answers(self->overdue);
    if (!*owner) {
        return G_SOURCE_REMOVE;
    }
    if (self->pending.empty()) {
        self->ticking = 0;
        return G_SOURCE_REMOVE;
    }
    auto const latest = self->answers ? self->answers->latest(self->last_number) : 0;
    bool const has_run = std::ranges::find(self->running, latest) != self->running.end();
    self->overdue = has_run ? 0 : latest;
    return G_SOURCE_CONTINUE;
}

void script_calls::on_ran(GObject* view, GAsyncResult* result, gpointer data) {
    std::unique_ptr<batch> const ran(static_cast<batch*>(data));
    glib_error failure;
    gobject_ptr<JSCValue>::adopt(
        webkit_web_view_evaluate_javascript_finish(WEBKIT_WEB_VIEW(view), result, failure.put()));
    auto const owner = ran->owner;
    if (*owner) {
        std::erase((*owner)->running, ran->last);
        (*owner)->last_ran = g_get_monotonic_time();
        (*owner)->take_answers(ran->last);
    }
    if (*owner) {
        bool const in_page = failure.matches(WEBKIT_JAVASCRIPT_ERROR, WEBKIT_JAVASCRIPT_ERROR_SCRIPT_FAILED);
        (*owner)->cut_off(
            ran->last,
            !failure ? error(E_ILLEGAL_METHOD_CALL, L"The page is not ready for scripts yet.")
                     : error(in_page ? E_FAIL : RPC_E_DISCONNECTED, winrt::to_hstring(failure.message())));
    }
}

void script_calls::take_answers(uint64_t last) {
    auto const owner = self;  // those who wait may do anything
    while (*owner && answers && !pending.empty() && pending.front().number <= last) {
        auto const answer = answers->next(last);
        if (!answer) {
            return;
        }
        if (pending.front().number == answer->number) {
            auto const ending = std::move(pending.front().ending);
            pending.pop_front();
            end(*ending, answer->text);
        }
    }
}

void script_calls::cut_off(uint64_t last, std::exception_ptr const& reason) {
    auto const owner = self;
    while (*owner && !pending.empty() && pending.front().number <= last) {
        auto const ending = std::move(pending.front().ending);
        pending.pop_front();
        ending->fail(reason);
    }
}

void script_calls::on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
    if (event == WEBKIT_LOAD_COMMITTED) {
        static_cast<script_calls*>(data)->change_page(true, E_ABORT, L"The page went away during the call.");
    }
}

void script_calls::on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer data) {
    static_cast<script_calls*>(data)->change_page(false, RPC_E_DISCONNECTED,
                                                  L"The page's process ended during the call.");
}

void script_calls::change_page(bool has_page, winrt::hresult code, wchar_t const* message) {
    auto const owner = self;
    auto const last = last_number;
    unsent.clear();
    take_answers(last);
    if (*owner) {
        answers.reset();
        if (has_page) {
            open_answers();
        }
        cut_off(last, error(code, message));
    }
}

void script_calls::open_answers() {
    try {
        answers.emplace();
    } catch (winrt::hresult_error const& failure) {
        g_critical("%s", winrt::to_string(failure.message()).c_str());
        return;
    }
    auto const files = gobject_ptr<GUnixFDList>::adopt(g_unix_fd_list_new());
    glib_error failure;
    if (g_unix_fd_list_append(files.get(), answers->file(), failure.put()) < 0) {
        g_critical("%s", failure.message());
        return answers.reset();
    }
    g_unix_fd_list_append(files.get(), tether.end_for_pages(), nullptr);
    webkit_web_view_send_message_to_page(
        view, webkit_user_message_new_with_fd_list("answers", nullptr, files.get()), nullptr, nullptr,
        nullptr);
}

}  // namespace runtime
