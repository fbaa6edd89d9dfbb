// Loaded by the engine into its page processes. It gives the script world of the library what a script
// cannot get by itself:
//
//   page                      the global object of the document's own scripts
//   evaluate(text)            runs a program among them, also where the page forbids it to its own
//   runTasks(element, count)  clicks on the element so many times, each time as a task of its own
//   answer(number, text)      ends a call
//   stayAwake()               lets the page's process not sleep for a moment
//
// All are for the top document only, and pages do not see that world. It also lets local pages play local
// media, and keeps pages from taking the machine from the engine.

#include <gio/gunixfdlist.h>
#include <sys/uio.h>
#include <unistd.h>
#include <webkit2/webkit-web-extension.h>

#include <memory>

#include "../src/glib_ptr.h"
#include "../src/wakeful_loop.h"
#include "answer.h"
#include "fair_share.h"
#include "local_media.h"

namespace {

/// The file for a page's answers, which the library sends with each new document.
class answer_file {
  public:
    answer_file() = default;
    ~answer_file() { assign(-1); }
    answer_file(answer_file const&) = delete;
    answer_file& operator=(answer_file const&) = delete;

    static answer_file& of(WebKitWebPage* page) {
        return *static_cast<answer_file*>(g_object_get_data(G_OBJECT(page), key));
    }
    static void add_to(WebKitWebPage* page) {
        g_object_set_data_full(G_OBJECT(page), key, new answer_file(),
                               [](gpointer file) { delete static_cast<answer_file*>(file); });
    }

    void assign(int file) {
        if (descriptor >= 0) {
            close(descriptor);
        }
        descriptor = file;
    }

    void append(uint64_t number, void const* text, gsize size) {
        answer_head head{number, size};
        iovec parts[] = {{&head, sizeof head}, {const_cast<void*>(text), size}};
        if (descriptor >= 0 && writev(descriptor, parts, 2) != static_cast<ssize_t>(sizeof head + size)) {
            assign(-1);  // what follows a part of an answer could not be read
        }
    }

  private:
    static constexpr char const* key = "answers";

    int descriptor = -1;
};

auto bytes_of(JSCValue* text) {
    return std::unique_ptr<GBytes, runtime::release_with<g_bytes_unref>>(jsc_value_to_string_as_bytes(text));
}

JSCValue* evaluate(JSCValue* text, gpointer) {
    auto const bytes = bytes_of(text);
    gsize size = 0;
    auto const* const characters = static_cast<char const*>(g_bytes_get_data(bytes.get(), &size));
    // What the program throws goes on to the caller.
    return jsc_context_evaluate(jsc_context_get_current(), characters, static_cast<gssize>(size));
}

/// The engine serves promises when the outermost script ends. Of what it has for dispatching events only this
/// lets listeners run as outermost scripts though another one is under way.
void run_tasks(JSCValue* element, guint64 count, gpointer) {
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    auto* const target = WEBKIT_DOM_HTML_ELEMENT(webkit_dom_node_for_js_value(element));
    for (guint64 i = 0; i < count; ++i) {
        webkit_dom_html_element_click(target);
    }
    G_GNUC_END_IGNORE_DEPRECATIONS
}

void answer(guint64 number, JSCValue* text, gpointer page) {
    auto const bytes = bytes_of(text);
    gsize size = 0;
    auto const* const characters = g_bytes_get_data(bytes.get(), &size);
    answer_file::of(WEBKIT_WEB_PAGE(page)).append(number, characters, size);
}

void stay_awake(gpointer) {
    static runtime::wakeful_loop loop;
    loop.stay_awake();
}

void set(JSCContext* context, char const* name, JSCValue* value) {
    jsc_context_set_value(context, name, value);
    g_object_unref(value);
}

void on_window_object_cleared(WebKitScriptWorld* world, WebKitWebPage* web_page, WebKitFrame* frame,
                              gpointer) {
    if (!webkit_frame_is_main_frame(frame)) {
        return;
    }
    offer_local_media(web_page);
    JSCContext* const own = webkit_frame_get_js_context_for_script_world(frame, world);
    JSCContext* const page = webkit_frame_get_js_context(frame);
    set(own, "page", jsc_context_get_global_object(page));
    // A function of the page's world: nothing that it returns or throws leads into ours.
    set(own, "evaluate",
        jsc_value_new_function(page, "evaluate", G_CALLBACK(evaluate), nullptr, nullptr, JSC_TYPE_VALUE, 1,
                               JSC_TYPE_VALUE));
    set(own, "runTasks",
        jsc_value_new_function(own, "runTasks", G_CALLBACK(run_tasks), nullptr, nullptr, G_TYPE_NONE, 2,
                               JSC_TYPE_VALUE, G_TYPE_UINT64));
    set(own, "answer",
        jsc_value_new_function(own, "answer", G_CALLBACK(answer), g_object_ref(web_page), g_object_unref,
                               G_TYPE_NONE, 2, G_TYPE_UINT64, JSC_TYPE_VALUE));
    set(own, "stayAwake",
        jsc_value_new_function(own, "stayAwake", G_CALLBACK(stay_awake), nullptr, nullptr, G_TYPE_NONE, 0));
    g_object_unref(page);
    g_object_unref(own);
}

gboolean on_user_message(WebKitWebPage* page, WebKitUserMessage* message, gpointer) {
    // Nothing else is sent.
    GUnixFDList* const files = webkit_user_message_get_fd_list(message);
    answer_file::of(page).assign(g_unix_fd_list_get(files, 0, nullptr));
    if (g_unix_fd_list_get_length(files) > 1) {
        follow(g_unix_fd_list_get(files, 1, nullptr));
    }
    return TRUE;
}

void on_page_created(WebKitWebExtension*, WebKitWebPage* page, gpointer) {
    answer_file::add_to(page);
    g_signal_connect(page, "user-message-received", G_CALLBACK(on_user_message), nullptr);
}

}  // namespace

extern "C" G_MODULE_EXPORT void webkit_web_extension_initialize(WebKitWebExtension* extension) {
    allow_local_media();
    take_fair_share();
    g_signal_connect(extension, "page-created", G_CALLBACK(on_page_created), nullptr);
    // Kept for the life of the process.
    WebKitScriptWorld* const world = webkit_script_world_new_with_name("runtime");
    g_signal_connect(world, "window-object-cleared", G_CALLBACK(on_window_object_cleared), nullptr);
}
