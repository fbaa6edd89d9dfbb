#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <winrt/impl/object.h>

namespace winrt {

struct event_token {
    int64_t value{};
    explicit operator bool() const noexcept { return value != 0; }
};

/// A callable that a runtime object keeps. Copies are the same callable, with one state.
template <typename... Arguments>
class delegate {
  public:
    delegate(std::nullptr_t = nullptr) noexcept {}
    template <typename Function>
        requires std::invocable<Function&, Arguments...>
    delegate(Function function)
        : target(std::make_shared<std::function<void(Arguments...)>>(std::move(function))) {}

    explicit operator bool() const noexcept { return target != nullptr; }
    void operator()(Arguments const&... arguments) const { (*target)(arguments...); }

  private:
    std::shared_ptr<std::function<void(Arguments...)>> target;
};

/// A list of handlers. Adding and raising may meet on different threads; handlers run without the lock, so
/// they may add and remove.
template <typename Delegate>
class event {
  public:
    event_token add(Delegate handler) {
        std::lock_guard guard(lock);
        handlers.push_back({++lastToken, std::move(handler)});
        return {lastToken};
    }

    void remove(event_token token) {
        std::lock_guard guard(lock);
        std::erase_if(handlers, [&](entry const& entry) { return entry.token == token.value; });
    }

    template <typename... Arguments>
    void operator()(Arguments const&... arguments) {
        std::vector<entry> current;
        {
            std::lock_guard guard(lock);
            current = handlers;
        }
        for (auto const& entry : current) {
            entry.handler(arguments...);
        }
    }

  private:
    struct entry {
        int64_t token;
        Delegate handler;
    };
    std::mutex lock;
    std::vector<entry> handlers;
    int64_t lastToken = 0;
};

}  // namespace winrt
