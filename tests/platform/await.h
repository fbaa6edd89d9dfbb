#pragma once

#include <winrt/Windows.Foundation.h>

#include <chrono>
#include <exception>
#include <future>
#include <memory>
#include <stdexcept>

/// Waits on the test's thread for the end of an operation: its value, or its exception.
template <typename Operation>
auto await(Operation operation) {
    using value = decltype(operation.operator co_await().await_resume());
    auto const promise = std::make_shared<std::promise<value>>();
    [](Operation operation, std::shared_ptr<std::promise<value>> promise) -> winrt::fire_and_forget {
        try {
            if constexpr (std::is_void_v<value>) {
                co_await operation;
                promise->set_value();
            } else {
                promise->set_value(co_await operation);
            }
        } catch (...) {
            promise->set_exception(std::current_exception());
        }
    }(operation, promise);
    auto ending = promise->get_future();
    if (ending.wait_for(std::chrono::seconds(30)) != std::future_status::ready) {
        throw std::runtime_error("the operation does not end");
    }
    return ending.get();
}
