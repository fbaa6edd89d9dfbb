#include "web_allowed_objects.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "page_message.h"
#include "script_text.h"

namespace runtime {

namespace {

/// Documents that left may come back with the history, and still have messages under way. The engine keeps
/// fewer than these.
constexpr size_t kept_documents = 16;

/// Code units of a message, for which the engine's side needs some ten times as many bytes.
constexpr size_t longest_message = 1 << 26;

// The functions belong to the page's world. What they use they took before the page's scripts could change
// it, and no exception of the other world leaves them: it would lead the page there.
constexpr char const* script_start = R"(((longest, id, objects) => {
    'use strict';
    if (window.reopened) {
        return;
    }
    const define = evaluate(`((name, methods, send) => {
        const {TypeError, Error} = window;
        const object = {};
        methods.forEach((method, index) => {
            object[method] = (...values) => {
                if (values.length === 0) {
                    throw new TypeError(method + ' needs an argument.');
                }
                const text = \`\${values[0]}\`;
                try {
                    send(index, text);
                } catch {
                    throw new Error('The message cannot be sent.');
                }
            };
        });
        Object.defineProperty(window, name, {value: Object.freeze(object)});
    })`);
    // What the other side has not taken yet stays here, in the page's own process.
    const {object, delivered} = webkit.messageHandlers;
    const portion = 1 << 18;
    const mostPortions = 4;
    let portions = 0;
    let size = 0;
    const waiting = [];
    const send = (text) => {
        object.postMessage(text);
        size += text.length + 64;
        if (size > portion) {
            size = 0;
            portions++;
            delivered.postMessage('').then(() => {
                portions--;
                let sent = 0;
                try {
                    while (sent < waiting.length && portions < mostPortions) {
                        send(waiting[sent++]);
                    }
                } finally {
                    waiting.splice(0, sent);
                }
            });
        }
    };
    objects.forEach(([name, methods], index) => {
        define(name, methods, (method, value) => {
            if (value.length > longest) {
                throw new RangeError('The message is too long.');
            }
            const text = `${id} ${index} ${method} ${value.toWellFormed()}`;
            if (waiting.length === 0 && portions < mostPortions) {
                send(text);
            } else {
                waiting.push(text);
            }
        });
    });
})()";

/// What a handler throws ends here: it must not unwind through the engine's C frames.
void call_safely(page_object& object, size_t method, winrt::hstring const& text) noexcept {
    try {
        object.call(method, text);
    } catch (winrt::hresult_error const& error) {
        g_critical("A handler of a page's message failed: %s", winrt::to_string(error.message()).c_str());
    } catch (...) {
        g_critical("A handler of a page's message failed");
    }
}

uint64_t next_id() {
    static uint64_t last = 0;
    return ++last;
}

}  // namespace

web_allowed_objects::web_allowed_objects(WebKitWebView* view) : view(view) {
    webkit_user_content_manager_register_script_message_handler_in_world(manager(), handler, page_world);
    webkit_user_content_manager_register_script_message_handler_with_reply(manager(), reply_handler,
                                                                           page_world);
    g_signal_connect(manager(), "script-message-received::object", G_CALLBACK(on_message), this);
    g_signal_connect(manager(), "script-message-with-reply-received::delivered", G_CALLBACK(on_question),
                     nullptr);
    g_signal_connect(view, "load-changed", G_CALLBACK(on_load_changed), this);
}

web_allowed_objects::~web_allowed_objects() {
    g_signal_handlers_disconnect_by_data(view, this);
    g_signal_handlers_disconnect_by_data(manager(), this);
}

void web_allowed_objects::add(std::string const& name, std::shared_ptr<page_object> object) {
    requested[name] = std::move(object);
}

void web_allowed_objects::install() {
    end_navigation();
    if (script) {
        webkit_user_content_manager_remove_script(manager(), script.get());
        script.reset();
    }
    if (requested.empty()) {
        return;
    }
    incoming.emplace(document{next_id(), {}});
    auto descriptions = nlohmann::json::array();
    for (auto& [name, object] : std::exchange(requested, {})) {
        descriptions.push_back({name, object->methods()});
        incoming->objects.push_back(std::move(object));
    }
    auto const source = script_start + std::to_string(longest_message) + ", " + std::to_string(incoming->id) +
                        ", " + descriptions.dump(-1, ' ', true) + ")";
    script = make_page_script(source.c_str());
    webkit_user_content_manager_add_script(manager(), script.get());
}

void web_allowed_objects::end_navigation() {
    if (incoming) {
        incoming.reset();
        webkit_user_content_manager_remove_script(manager(), script.get());
        script.reset();
    }
}

void web_allowed_objects::on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer data) {
    auto* const self = static_cast<web_allowed_objects*>(data);
    if (event == WEBKIT_LOAD_COMMITTED && self->incoming) {
        self->documents.push_back(std::move(*self->incoming));
        self->incoming.reset();
        if (self->documents.size() > kept_documents) {
            self->documents.pop_front();
        }
    }
}

void web_allowed_objects::on_message(WebKitUserContentManager*, WebKitJavascriptResult* message,
                                     gpointer data) {
    constexpr size_t longest_text = longest_message * 3 + 100;  // as UTF-8, with what stands before it
    auto const text = text_of(webkit_javascript_result_get_js_value(message));
    if (text.size() <= longest_text) {
        static_cast<web_allowed_objects*>(data)->deliver(text);
    }
}

gboolean web_allowed_objects::on_question(WebKitUserContentManager*, JSCValue* question,
                                          WebKitScriptMessageReply* reply, gpointer) {
    // All messages that were sent before have been delivered.
    auto const nothing =
        gobject_ptr<JSCValue>::adopt(jsc_value_new_undefined(jsc_value_get_context(question)));
    webkit_script_message_reply_return_value(reply, nothing.get());
    return TRUE;
}

void web_allowed_objects::deliver(std::string_view message) {
    auto const parsed = parse_page_message(message);
    auto const sender =
        parsed ? std::ranges::find(documents, parsed->document, &document::id) : documents.end();
    if (sender == documents.end() || parsed->object >= sender->objects.size()) {
        return;
    }
    // A handler may navigate and so change the list.
    auto const receiver = sender->objects[parsed->object];
    if (parsed->method < receiver->methods().size()) {
        call_safely(*receiver, parsed->method, winrt::to_hstring(parsed->argument));
    }
}

}  // namespace runtime
