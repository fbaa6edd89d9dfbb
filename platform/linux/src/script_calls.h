#pragma once

#include <webkit2/webkit2.h>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <winrt/Windows.Foundation.h>

#include "page_tether.h"
#include "script_answers.h"
#include "wakeful_loop.h"

namespace runtime {

/// Calls of functions of a view's page. They run and end in the order in which they were made, each as a task
/// of its own. Each of them ends: one that a new page or the end of the page process cuts off fails at that
/// moment. The calls of one turn of the loop travel together. User-interface thread only.
class script_calls {
  public:
    using operation = winrt::impl::async_object<winrt::hstring>;

    /// To be made before whatever decides on the view's navigations.
    explicit script_calls(WebKitWebView* view);
    ~script_calls();
    script_calls(script_calls const&) = delete;
    script_calls& operator=(script_calls const&) = delete;

    std::shared_ptr<operation> call(std::string const& name, std::vector<std::string> const& arguments);

    /// The page's side of a call, for the script world of the library.
    static char const* const script;

  private:
    struct pending_call {
        uint64_t number;
        std::shared_ptr<operation> ending;
    };
    struct batch;

    static gboolean on_decide_policy(WebKitWebView*, WebKitPolicyDecision*, WebKitPolicyDecisionType,
                                     gpointer self);
    static void on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer self);
    static void on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self);
    static gboolean on_turn_end(gpointer self);
    static gboolean on_tick(gpointer self);
    static void on_ran(GObject* view, GAsyncResult* result, gpointer batch);

    void change_page(bool has_page, winrt::hresult code, wchar_t const* message);
    void open_answers();
    void send();
    bool one_follows_another() const;
    void take_answers(uint64_t last);
    void cut_off(uint64_t last, std::exception_ptr const& reason);

    WebKitWebView* view;
    page_tether tether;
    std::optional<script_answers> answers;  // while there is a page
    std::deque<pending_call> pending;
    uint64_t last_number = 0;
    uint64_t overdue = 0;          // the latest call whose answer waits for the end of others
    std::string unsent;            // calls, each with a comma behind it
    std::deque<uint64_t> running;  // the last calls of the batches that were sent
    int64_t last_ran = 0;          // when the page had run the latest of them
    wakeful_loop loop;
    guint turn_end = 0;
    guint ticking = 0;
    std::shared_ptr<script_calls*> self;  // outlived by what the engine still answers
};

}  // namespace runtime
