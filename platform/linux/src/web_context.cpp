#include "web_context.h"

#include <cstring>
#include <string>

#include "file_system.h"
#include "glib_ptr.h"
#include "local_content.h"
#include "page_world.h"
#include "ui_thread.h"

namespace runtime {

namespace {

gobject_ptr<WebKitWebsiteDataManager> make_data_manager() {
    // Like an app's own folder: what the program's web views store belongs to that program.
    auto const name = program_name();
    glib_text const data(g_build_filename(g_get_user_data_dir(), name.c_str(), "webview", nullptr));
    glib_text const cache(g_build_filename(g_get_user_cache_dir(), name.c_str(), "webview", nullptr));
    return gobject_ptr<WebKitWebsiteDataManager>::adopt(webkit_website_data_manager_new(
        "base-data-directory", data.get(), "base-cache-directory", cache.get(), nullptr));
}

/// Only the user can switch it off, and not silently.
bool is_sandboxed() {
    char const* const choice = g_getenv("WEBVIEW_SANDBOX");
    bool const off = choice && std::strcmp(choice, "off") == 0;
    if (off) {
        g_warning("WEBVIEW_SANDBOX=off: web pages run with all rights of this user.");
    }
    return !off;
}

/// Where no namespaces can be made, the engine would end the whole program at the first page.
void require_sandbox() {
    char const* command[] = {"bwrap",
                             "--die-with-parent",
                             "--unshare-pid",
                             "--unshare-ipc",
                             "--unshare-uts",
                             "--ro-bind",
                             "/",
                             "/",
                             "true",
                             nullptr};
    char* output = nullptr;
    int status = 0;
    glib_error error;
    bool const started = g_spawn_sync(nullptr, const_cast<char**>(command), nullptr, G_SPAWN_SEARCH_PATH,
                                      nullptr, nullptr, nullptr, &output, &status, error.put());
    glib_text const complaint(output);
    if (!started || status != 0) {
        throw winrt::hresult_error(
            E_FAIL,
            winrt::to_hstring(std::string("The sandbox of web pages cannot start: ") +
                              g_strchomp(started ? complaint.get() : error->message) +
                              ". Allow user namespaces, or set WEBVIEW_SANDBOX=off to run pages with all "
                              "rights of this user."));
    }
}

void persist_cookies(WebKitWebsiteDataManager* manager) {
    glib_text const file(g_build_filename(webkit_website_data_manager_get_base_data_directory(manager),
                                          "cookies.sqlite", nullptr));
    webkit_cookie_manager_set_persistent_storage(webkit_website_data_manager_get_cookie_manager(manager),
                                                 file.get(), WEBKIT_COOKIE_PERSISTENT_STORAGE_SQLITE);
}

}  // namespace

WebKitWebContext* web_context() {
    ui_thread::require_current();
    static WebKitWebContext* const context = [] {
        bool const sandboxed = is_sandboxed();
        if (sandboxed) {
            require_sandbox();
        }
        auto const manager = make_data_manager();
        WebKitWebContext* const created = webkit_web_context_new_with_website_data_manager(manager.get());
        webkit_web_context_set_sandbox_enabled(created, sandboxed);
        offer_page_access(created);
        offer_local_content(created);
        persist_cookies(manager.get());
        // A download has no place to go to; the navigation that turned into one has failed.
        g_signal_connect(created, "download-started",
                         G_CALLBACK(+[](WebKitWebContext*, WebKitDownload* download, gpointer) {
                             webkit_download_cancel(download);
                         }),
                         nullptr);
        return created;
    }();
    return context;
}

}  // namespace runtime
