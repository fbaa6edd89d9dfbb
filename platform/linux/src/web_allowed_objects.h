#pragma once

#include <webkit2/webkit2.h>

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "page_object.h"
#include "page_world.h"

namespace runtime {

/// The objects that a view's pages are given. Objects are asked for one navigation at a time, and only the
/// document that it brings gets them. What a document sends goes to its own objects, also when it arrives
/// after the next document. User-interface thread only.
class web_allowed_objects {
  public:
    explicit web_allowed_objects(WebKitWebView* view);
    ~web_allowed_objects();
    web_allowed_objects(web_allowed_objects const&) = delete;
    web_allowed_objects& operator=(web_allowed_objects const&) = delete;

    /// For the navigation that starts next, or is just about to start. The last object of a name counts.
    void add(std::string const& name, std::shared_ptr<page_object> object);

    /// The navigation goes on: the next document gets what was asked for.
    void install();

    /// The navigation does not take place.
    void forget_requests() { requested.clear(); }

    /// The navigation has ended. If it brought no document, none will get the objects.
    void end_navigation();

    static constexpr char const* handler = "object";
    static constexpr char const* reply_handler = "delivered";

  private:
    using object_list = std::vector<std::shared_ptr<page_object>>;
    struct document {
        uint64_t id;
        object_list objects;
    };

    static void on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer self);
    static gboolean on_question(WebKitUserContentManager*, JSCValue* question,
                                WebKitScriptMessageReply* reply, gpointer);
    static void on_message(WebKitUserContentManager*, WebKitJavascriptResult* message, gpointer self);

    void deliver(std::string_view message);

    WebKitUserContentManager* manager() const { return webkit_web_view_get_user_content_manager(view); }

    WebKitWebView* view;
    std::map<std::string, std::shared_ptr<page_object>> requested;
    user_script script;
    std::optional<document> incoming;
    std::deque<document> documents;  // the newest last
};

}  // namespace runtime
