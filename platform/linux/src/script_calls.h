#pragma once

#include <webkit2/webkit2.h>

#include <deque>
#include <memory>
#include <string>
#include <vector>

#include <winrt/Windows.Foundation.h>

namespace runtime {

/// Calls of functions of a view's page. They run and end in the order in which they were made. Each of them
/// ends: one that a new page or the end of the page process cuts off fails at that moment. User-interface
/// thread only.
class script_calls {
  public:
    using operation = winrt::impl::async_object<winrt::hstring>;

    explicit script_calls(WebKitWebView* view);
    ~script_calls();
    script_calls(script_calls const&) = delete;
    script_calls& operator=(script_calls const&) = delete;

    std::shared_ptr<operation> call(std::string const& name, std::vector<std::string> const& arguments);

    /// The page's side of a call, for the script world of the library.
    static char const* const script;

  private:
    struct pending_call;

    static void on_load_changed(WebKitWebView*, WebKitLoadEvent event, gpointer self);
    static void on_terminated(WebKitWebView*, WebKitWebProcessTerminationReason, gpointer self);
    static void on_answer(GObject* view, GAsyncResult* result, gpointer call);

    void cut_off(winrt::hresult code, wchar_t const* message);

    WebKitWebView* view;
    bool has_page = false;
    std::deque<std::shared_ptr<operation>> pending;
    std::shared_ptr<script_calls*> self;  // outlived by the calls that the engine still answers
};

}  // namespace runtime
