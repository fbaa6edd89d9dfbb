#pragma once

#include <webkit2/webkit2.h>

#include <functional>
#include <optional>
#include <string>

#include <winrt/Windows.Web.h>

namespace runtime {

/// Turns the browser engine's signals into navigations of the top document, each of which starts, loads
/// content, has its document loaded and completes: in this order, and completing exactly once.
///
/// The engine decides about a navigation before it tells for which frame; so a script in the top document
/// announces the navigations that the document itself starts, and what was not announced is recognised when
/// the engine starts it. User-interface thread only.
class navigation_tracker {
  public:
    struct events {
        /// Returns whether the navigation may go on.
        std::function<bool(std::string const& uri)> starting;
        /// The navigation goes on; its load begins afterwards.
        std::function<void()> accepted;
        /// The new document is there and the scripts of its start have run, its own not yet.
        std::function<void()> content_loading;
        std::function<void()> dom_content_loaded;
        /// The error is empty for a successful load.
        std::function<void(std::optional<winrt::Windows::Web::WebErrorStatus> error)> completed;
    };

    navigation_tracker(WebKitWebView* view, events handlers);
    ~navigation_tracker();
    navigation_tracker(navigation_tracker const&) = delete;
    navigation_tracker& operator=(navigation_tracker const&) = delete;

    /// Before a navigation that our own side starts: raises the event; false when a handler refused.
    bool begin(std::string const& uri);

    /// After `begin`, for a navigation that may turn out to be a move within the document, of which the
    /// engine reports nothing.
    void expect_move_within_document();

    /// Whether our own side has begun a navigation that the engine has not taken up yet.
    bool is_expecting() const { return state == phase::expected; }

    /// Ends the navigation under way, if any, as cancelled.
    void cancel();

    /// The script that announces navigations and document events, and the name of its message handler.
    static char const* const script;
    /// The script for all frames that makes links to downloads do nothing. It goes before the other one.
    static char const* const download_script;
    /// The script for all frames, in the pages' world, that gives them the interfaces they expect.
    static char const* const hiding_script;
    static constexpr char const* handler = "navigation";

  private:
    enum class phase { none, expected, started, committed };

    static void on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer self);
    static gboolean on_load_failed(WebKitWebView*, WebKitLoadEvent, char const* uri, GError* error,
                                   gpointer self);
    static gboolean on_tls_failed(WebKitWebView*, char const* uri, GTlsCertificate*,
                                  GTlsCertificateFlags errors, gpointer self);
    static gboolean on_decide_policy(WebKitWebView*, WebKitPolicyDecision* decision,
                                     WebKitPolicyDecisionType type, gpointer self);
    static void on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self);
    static void on_message(WebKitUserContentManager*, WebKitJavascriptResult* message, gpointer self);

    bool decide_navigation(WebKitNavigationAction* action);
    void note_decision();
    bool decide_response(WebKitResponsePolicyDecision* decision);
    void handle_message(std::string const& message);
    void start();
    void commit();
    void load_content();
    void load_document();
    void finish_load();
    void fail(std::string const& uri, GError const& error);
    void complete(std::optional<winrt::Windows::Web::WebErrorStatus> error);
    std::string current_uri() const;

    WebKitWebView* view;
    events handlers;
    phase state = phase::none;
    std::string uri;        // of the navigation under way
    std::string announced;  // by the document, decision still to come
    std::string undecided;  // last decision that nothing announced
    int64_t announced_at = 0;
    bool decided = false;     // the navigation under way, if it is expected
    bool late_start = false;  // the engine may still tell that a cancelled navigation has started
    guint status = 0;
    bool redirected = false;
    bool content_loaded = false;
    bool document_loaded = false;
    guint move_timer = 0;
    uint64_t generation = 0;
};

}  // namespace runtime
