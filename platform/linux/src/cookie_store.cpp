#include "cookie_store.h"

#include <algorithm>
#include <coroutine>

#include <winrt/Windows.Foundation.h>

#include "ui_thread.h"
#include "web_context.h"

namespace runtime {

namespace {

using winrt::Windows::Foundation::IAsyncAction;
using cookie_list = std::vector<soup_cookie_ptr>;

WebKitCookieManager* engine_store() {
    return webkit_web_context_get_cookie_manager(web_context());
}

/// Awaits one asynchronous call of the engine's store, which always ends by calling back. User-interface
/// thread only.
template <typename Start, typename Finish>
class engine_call {
  public:
    engine_call(Start start, Finish finish) : start(std::move(start)), finish(std::move(finish)) {}

    bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> handle) {
        waiting = handle;
        start(engine_store(), &ready, this);
    }
    auto await_resume() {
        glib_error error;
        auto outcome = finish(engine_store(), result.get(), error.put());
        if (error) {
            throw winrt::hresult_error(E_FAIL, winrt::to_hstring(error.message()));
        }
        return outcome;
    }

  private:
    static void ready(GObject*, GAsyncResult* result, gpointer data) {
        auto& call = *static_cast<engine_call*>(data);
        call.result = gobject_ptr<GAsyncResult>::share(result);
        call.waiting.resume();
    }

    Start const start;
    Finish const finish;
    std::coroutine_handle<> waiting;
    gobject_ptr<GAsyncResult> result;
};

/// Takes over a list that the engine gave away with its cookies.
cookie_list adopt(GList* list) {
    cookie_list cookies;
    for (GList* item = list; item; item = item->next) {
        cookies.emplace_back(static_cast<SoupCookie*>(item->data));
    }
    g_list_free(list);
    return cookies;
}

auto fetch_all() {
    return engine_call([](auto* store, auto ready,
                          auto data) { webkit_cookie_manager_get_all_cookies(store, nullptr, ready, data); },
                       [](auto* store, auto* result, auto** error) {
                           return adopt(webkit_cookie_manager_get_all_cookies_finish(store, result, error));
                       });
}

auto fetch_matching(std::string const& uri) {
    return engine_call(
        [uri](auto* store, auto ready, auto data) {
            webkit_cookie_manager_get_cookies(store, uri.c_str(), nullptr, ready, data);
        },
        [](auto* store, auto* result, auto** error) {
            return adopt(webkit_cookie_manager_get_cookies_finish(store, result, error));
        });
}

auto store_one(SoupCookie* cookie) {
    return engine_call(
        [cookie](auto* store, auto ready, auto data) {
            webkit_cookie_manager_add_cookie(store, cookie, nullptr, ready, data);
        },
        [](auto* store, auto* result, auto** error) {
            return webkit_cookie_manager_add_cookie_finish(store, result, error);
        });
}

auto delete_one(SoupCookie* cookie) {
    return engine_call(
        [cookie](auto* store, auto ready, auto data) {
            webkit_cookie_manager_delete_cookie(store, cookie, nullptr, ready, data);
        },
        [](auto* store, auto* result, auto** error) {
            return webkit_cookie_manager_delete_cookie_finish(store, result, error);
        });
}

/// Whether both are the same cookie, of which only one can be stored.
bool is_same(SoupCookie* left, SoupCookie* right) {
    return g_strcmp0(soup_cookie_get_name(left), soup_cookie_get_name(right)) == 0 &&
           g_strcmp0(soup_cookie_get_path(left), soup_cookie_get_path(right)) == 0 &&
           g_ascii_strcasecmp(soup_cookie_get_domain(left), soup_cookie_get_domain(right)) == 0;
}

/// What an operation and the side that waits for it share. The operation may end after the wait was given up.
struct exchange {
    cookie_list cookies;
    bool replaced = false;
    std::exception_ptr failure;
};

using exchange_ptr = std::shared_ptr<exchange>;
using cookie_ptr = std::shared_ptr<SoupCookie>;

IAsyncAction fetch(exchange_ptr exchange, std::string uri) {
    exchange->cookies = co_await fetch_matching(uri);
}

IAsyncAction store(exchange_ptr exchange, cookie_ptr cookie) {
    auto const before = co_await fetch_all();
    exchange->replaced =
        std::ranges::any_of(before, [&](auto const& stored) { return is_same(stored.get(), cookie.get()); });
    co_await store_one(cookie.get());
}

/// The engine deletes a cookie only if it is given the very one that is stored.
IAsyncAction erase(exchange_ptr, cookie_ptr cookie) {
    auto const before = co_await fetch_all();
    for (auto const& stored : before) {
        if (is_same(stored.get(), cookie.get())) {
            co_await delete_one(stored.get());
        }
    }
}

winrt::fire_and_forget report_ending(IAsyncAction action, exchange_ptr exchange,
                                     std::function<void()> finished) {
    try {
        co_await action;
    } catch (...) {
        exchange->failure = std::current_exception();
    }
    finished();
}

/// Runs an operation on the user-interface thread and waits for its ending.
template <typename Argument>
exchange_ptr carry_out(IAsyncAction (*operation)(exchange_ptr, Argument), Argument argument) {
    auto exchange = std::make_shared<runtime::exchange>();
    auto const start = [=](std::function<void()> finished) {
        report_ending(operation(exchange, argument), exchange, std::move(finished));
    };
    if (!ui_thread::instance().wait_for(start, ui_thread::patience)) {
        throw winrt::hresult_error(RPC_E_TIMEOUT, L"The cookie store did not answer in time.");
    }
    if (exchange->failure) {
        std::rethrow_exception(exchange->failure);
    }
    return exchange;
}

}  // namespace

std::vector<soup_cookie_ptr> cookie_store::matching(std::string const& uri) {
    return std::move(carry_out(&fetch, uri)->cookies);
}

bool cookie_store::add(soup_cookie_ptr cookie) {
    return carry_out(&store, cookie_ptr(std::move(cookie)))->replaced;
}

void cookie_store::remove(soup_cookie_ptr cookie) {
    carry_out(&erase, cookie_ptr(std::move(cookie)));
}

}  // namespace runtime
