#include "navigation_tracker.h"

#include <string_view>

#include "glib_ptr.h"
#include "load_errors.h"

namespace runtime {

using winrt::Windows::Web::WebErrorStatus;

namespace {

/// An announcement and its decision are some 100 microseconds apart; one that stays alone was prevented.
constexpr int64_t announcement_lifetime_us = 1'000'000;

/// How long the engine may take to start a load before it must have been a move within the document.
constexpr guint move_patience_ms = 100;

bool starts_with_http(std::string_view uri) {
    return uri.starts_with("http:") || uri.starts_with("https:");
}

}  // namespace

// Downloads have no place to go to, so links to them do nothing. The engine's own downloads are switched off:
// when the server of one redirects it to another scheme, the engine turns it into a navigation to local
// content.
char const* const navigation_tracker::download_script = R"(
    window.navigation?.addEventListener('navigate', (event) => {
        if (event.sourceElement?.hasAttribute('download')) {
            event.preventDefault();
        }
    });
)";

char const* const navigation_tracker::script = R"((() => {
    if (window.runtimeInstalled) {
        return;  // document.open() runs the scripts of a document's start once more
    }
    window.runtimeInstalled = true;
    const post = (text) => webkit.messageHandlers.navigation.postMessage(text);
    post('content');
    document.addEventListener('DOMContentLoaded', () => post('loaded'));
    addEventListener('pageshow', (event) => event.persisted && post('loaded'));
    window.navigation?.addEventListener('navigate', (event) => {
        const destination = event.destination;
        if (!destination.sameDocument && !event.defaultPrevented && event.navigationType !== 'traverse') {
            post('navigate ' + destination.url);
        }
    });
})())";

// Pages get the engine's usual interfaces: one is switched on for the scripts above alone, and links lose one
// with the downloads.
char const* const navigation_tracker::hiding_script = R"((() => {
    for (const name of Object.getOwnPropertyNames(window)) {
        if (/^(navigation$|Navigat(e|ion)[A-Z]|Navigation$)/.test(name) && name !== 'NavigationPreloadManager') {
            delete window[name];
        }
    }
    for (const type of [HTMLAnchorElement, HTMLAreaElement]) {
        Object.defineProperty(type.prototype, 'download', {
            get() { return this.getAttribute('download') ?? '' },
            set(value) { this.setAttribute('download', value) },
            configurable: true,
            enumerable: true,
        });
    }
})())";

navigation_tracker::navigation_tracker(WebKitWebView* view, events handlers)
    : view(view), handlers(std::move(handlers)) {
    g_signal_connect(view, "load-changed", G_CALLBACK(on_load_changed), this);
    g_signal_connect(view, "load-failed", G_CALLBACK(on_load_failed), this);
    g_signal_connect(view, "load-failed-with-tls-errors", G_CALLBACK(on_tls_failed), this);
    g_signal_connect(view, "decide-policy", G_CALLBACK(on_decide_policy), this);
    g_signal_connect(view, "web-process-terminated", G_CALLBACK(on_terminated), this);
    g_signal_connect(webkit_web_view_get_user_content_manager(view), "script-message-received::navigation",
                     G_CALLBACK(on_message), this);
}

navigation_tracker::~navigation_tracker() {
    g_signal_handlers_disconnect_by_data(view, this);
    g_signal_handlers_disconnect_by_data(webkit_web_view_get_user_content_manager(view), this);
    if (move_timer) {
        g_source_remove(move_timer);
    }
}

bool navigation_tracker::begin(std::string const& target) {
    cancel();
    auto const own = ++generation;
    bool const allowed = handlers.starting(target);
    if (!allowed || own != generation) {  // a handler may have started another navigation
        return false;
    }
    state = phase::expected;
    decided = false;
    uri = target;
    status = 0;
    redirected = false;
    content_loaded = false;
    document_loaded = false;
    handlers.accepted();
    return true;
}

void navigation_tracker::expect_move_within_document() {
    if (!move_timer) {
        move_timer = g_timeout_add_once(
            move_patience_ms,
            [](gpointer data) {
                auto* const self = static_cast<navigation_tracker*>(data);
                self->move_timer = 0;
                if (self->state == phase::expected) {
                    self->complete(std::nullopt);
                }
            },
            this);
    }
}

void navigation_tracker::cancel() {
    if (state != phase::none) {
        late_start = state == phase::expected && decided;
        complete(WebErrorStatus::OperationCanceled);
    }
}

void navigation_tracker::on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
    auto* const self = static_cast<navigation_tracker*>(data);
    switch (event) {
        case WEBKIT_LOAD_STARTED:
            return self->start();
        case WEBKIT_LOAD_REDIRECTED:
            self->redirected = true;
            return;
        case WEBKIT_LOAD_COMMITTED:
            return self->commit();
        case WEBKIT_LOAD_FINISHED:
            return self->finish_load();
    }
}

gboolean navigation_tracker::on_load_failed(WebKitWebView*, WebKitLoadEvent, char const* uri, GError* error,
                                            gpointer data) {
    static_cast<navigation_tracker*>(data)->fail(uri, *error);
    return TRUE;  // the engine's own error page would be a navigation that nobody asked for
}

gboolean navigation_tracker::on_tls_failed(WebKitWebView*, char const*, GTlsCertificate*,
                                           GTlsCertificateFlags errors, gpointer data) {
    auto* const self = static_cast<navigation_tracker*>(data);
    if (self->state != phase::none) {
        self->complete(error_status(errors));
    }
    return TRUE;
}

gboolean navigation_tracker::on_decide_policy(WebKitWebView*, WebKitPolicyDecision* decision,
                                              WebKitPolicyDecisionType type, gpointer data) {
    auto* const self = static_cast<navigation_tracker*>(data);
    bool allowed = true;
    if (type == WEBKIT_POLICY_DECISION_TYPE_NAVIGATION_ACTION) {
        allowed = self->decide_navigation(webkit_navigation_policy_decision_get_navigation_action(
            WEBKIT_NAVIGATION_POLICY_DECISION(decision)));
    } else if (type == WEBKIT_POLICY_DECISION_TYPE_RESPONSE) {
        allowed = self->decide_response(WEBKIT_RESPONSE_POLICY_DECISION(decision));
    }
    if (allowed) {
        webkit_policy_decision_use(decision);
    } else {
        webkit_policy_decision_ignore(decision);
    }
    return TRUE;
}

void navigation_tracker::on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason reason,
                                       gpointer data) {
    auto* const self = static_cast<navigation_tracker*>(data);
    bool const intended = reason == WEBKIT_WEB_PROCESS_TERMINATED_BY_API;  // the navigation goes on
    if (self->state != phase::none && !intended) {
        self->complete(WebErrorStatus::Unknown);
    }
}

void navigation_tracker::on_message(WebKitUserContentManager*, WebKitJavascriptResult* message,
                                    gpointer data) {
    glib_text const text(jsc_value_to_string(webkit_javascript_result_get_js_value(message)));
    if (text) {  // a page's process that was taken over may send what no text can be made of
        static_cast<navigation_tracker*>(data)->handle_message(text.get());
    }
}

void navigation_tracker::handle_message(std::string const& message) {
    constexpr std::string_view navigate = "navigate ";
    if (message.starts_with(navigate)) {
        announced = message.substr(navigate.size());
        announced_at = g_get_monotonic_time();
    } else if (state != phase::committed) {
        return;
    } else if (message == "content") {
        load_content();
    } else {
        load_document();
    }
}

bool navigation_tracker::decide_navigation(WebKitNavigationAction* action) {
    if (webkit_navigation_action_is_redirect(action)) {
        return true;
    }
    std::string const target = webkit_uri_request_get_uri(webkit_navigation_action_get_request(action));
    bool const from_document =
        target == announced && g_get_monotonic_time() - announced_at < announcement_lifetime_us;
    if (!from_document) {
        undecided = target;
        note_decision();
        return true;
    }
    announced.clear();
    bool const replaces = state != phase::none;
    bool const allowed = begin(target);
    note_decision();
    if (!allowed && replaces) {
        webkit_web_view_stop_loading(view);  // it was reported as cancelled
    }
    return allowed;
}

/// What the engine was allowed to load before, it has started by now.
void navigation_tracker::note_decision() {
    decided = true;
    late_start = false;
}

bool navigation_tracker::decide_response(WebKitResponsePolicyDecision* decision) {
    if (webkit_response_policy_decision_is_main_frame_main_resource(decision)) {
        status = webkit_uri_response_get_status_code(webkit_response_policy_decision_get_response(decision));
    }
    return webkit_response_policy_decision_is_mime_type_supported(decision);
}

void navigation_tracker::start() {
    if (std::exchange(late_start, false)) {
        return;
    }
    if (state == phase::expected) {
        state = phase::started;
        return;
    }
    // Started by something that the document cannot announce: the history, a frame of another origin.
    if (begin(undecided.empty() ? current_uri() : undecided)) {
        state = phase::started;
    } else {
        webkit_web_view_stop_loading(view);
    }
}

void navigation_tracker::commit() {
    if (state != phase::started) {
        return;
    }
    auto const committed = current_uri();
    if (starts_with_http(uri) && committed == "about:blank") {
        complete(WebErrorStatus::CannotConnect);  // a port that the engine refuses to talk to
        return;
    }
    uri = committed;
    state = phase::committed;
}

void navigation_tracker::load_content() {
    if (!std::exchange(content_loaded, true)) {
        handlers.content_loading();
    }
}

void navigation_tracker::load_document() {
    auto const own = generation;
    load_content();
    if (own == generation && !std::exchange(document_loaded, true)) {
        handlers.dom_content_loaded();
    }
}

void navigation_tracker::finish_load() {
    if (state == phase::committed) {
        auto const own = generation;
        load_document();
        if (own != generation) {
            return;  // a handler has started another navigation
        }
        constexpr guint first_error = 400;
        complete(status >= first_error ? std::optional(static_cast<WebErrorStatus>(status)) : std::nullopt);
    } else if (state == phase::started && !webkit_web_view_is_loading(view)) {
        complete(WebErrorStatus::OperationCanceled);
    }
}

void navigation_tracker::fail(std::string const& failed, GError const& error) {
    if (state == phase::none) {
        return;
    }
    // A load that a new one replaces ends with an error of its own, after the new one was announced.
    bool const of_replaced_load =
        is_cancellation(error) &&
        (state == phase::expected || (state == phase::started && failed != uri && failed != current_uri()));
    if (!of_replaced_load) {
        auto const known = error_status(error);
        // The engine has no code for a chain of redirects without end.
        complete(known == WebErrorStatus::Unknown && redirected ? WebErrorStatus::RedirectFailed : known);
    }
}

void navigation_tracker::complete(std::optional<WebErrorStatus> error) {
    state = phase::none;
    ++generation;
    if (move_timer) {
        g_source_remove(std::exchange(move_timer, 0));
    }
    handlers.completed(error);
}

std::string navigation_tracker::current_uri() const {
    char const* const text = webkit_web_view_get_uri(view);
    return text ? text : "about:blank";
}

}  // namespace runtime
