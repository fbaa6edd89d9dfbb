// Loaded by the engine into its page processes. It gives the script world of the library what a script
// cannot get by itself:
//
//   page              the global object of the document's own scripts
//   evaluate(text)    runs a program among them, also where the page forbids its own scripts to evaluate
//   texts
//
// Both are for the top document only, and pages do not see that world.

#include <webkit2/webkit-web-extension.h>

namespace {

JSCValue* evaluate(JSCValue* text, gpointer) {
    GBytes* const bytes = jsc_value_to_string_as_bytes(text);
    gsize size = 0;
    auto const* const characters = static_cast<char const*>(g_bytes_get_data(bytes, &size));
    // What the program throws goes on to the caller.
    JSCValue* const result =
        jsc_context_evaluate(jsc_context_get_current(), characters, static_cast<gssize>(size));
    g_bytes_unref(bytes);
    return result;
}

void on_window_object_cleared(WebKitScriptWorld* world, WebKitWebPage*, WebKitFrame* frame, gpointer) {
    if (!webkit_frame_is_main_frame(frame)) {
        return;
    }
    JSCContext* const own = webkit_frame_get_js_context_for_script_world(frame, world);
    JSCContext* const page = webkit_frame_get_js_context(frame);
    JSCValue* const global = jsc_context_get_global_object(page);
    // A function of the page's world: nothing that it returns or throws leads into ours.
    JSCValue* const evaluator = jsc_value_new_function(page, "evaluate", G_CALLBACK(evaluate), nullptr,
                                                       nullptr, JSC_TYPE_VALUE, 1, JSC_TYPE_VALUE);
    jsc_context_set_value(own, "page", global);
    jsc_context_set_value(own, "evaluate", evaluator);
    g_object_unref(evaluator);
    g_object_unref(global);
    g_object_unref(page);
    g_object_unref(own);
}

}  // namespace

extern "C" G_MODULE_EXPORT void webkit_web_extension_initialize(WebKitWebExtension*) {
    // Kept for the life of the process.
    WebKitScriptWorld* const world = webkit_script_world_new_with_name("runtime");
    g_signal_connect(world, "window-object-cleared", G_CALLBACK(on_window_object_cleared), nullptr);
}
