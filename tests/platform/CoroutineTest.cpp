#include <gtest/gtest.h>
#include <winrt/Windows.ApplicationModel.Core.h>

#include <numeric>
#include <thread>

#include "await.h"
#include "codeOf.h"

using namespace std::chrono_literals;
using winrt::Windows::ApplicationModel::Core::CoreApplication;
using winrt::Windows::Foundation::IAsyncAction;
using winrt::Windows::Foundation::IAsyncOperation;
using winrt::Windows::Foundation::TypedEventHandler;
using winrt::Windows::UI::Core::CoreDispatcher;
using winrt::Windows::UI::Core::CoreDispatcherPriority;

namespace {

CoreDispatcher dispatcher() {
    return CoreApplication::MainView().Dispatcher();
}

bool isOnUIThread() {
    return dispatcher().HasThreadAccess();
}

using Flag = std::shared_ptr<std::atomic<bool>>;

/// What a coroutine holds. It tells when it is gone, a little late: whoever does not wait for it is caught.
std::shared_ptr<void> resource(Flag gone) {
    auto* const any = gone.get();
    return {any, [gone = std::move(gone)](void*) {
                std::this_thread::sleep_for(2ms);
                *gone = true;
            }};
}

IAsyncAction delay(std::chrono::milliseconds duration) {
    co_await winrt::resume_after(duration);
}

IAsyncOperation<int32_t> number(int32_t value, std::chrono::milliseconds duration) {
    if (duration > 0ms) {
        co_await winrt::resume_after(duration);
    }
    co_return value;
}

IAsyncAction fail(winrt::hresult code, bool later) {
    if (later) {
        co_await winrt::resume_background();
    }
    throw winrt::hresult_error(code, L"failed");
}

}  // namespace

TEST(CoroutineTest, DelaysLastAsLongAsTheySay) {
    const auto begin = std::chrono::steady_clock::now();
    auto longer = delay(120ms);
    auto shorter = delay(30ms);
    await(std::move(shorter));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 30ms);
    await(std::move(longer));
    const auto all = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(all, 120ms);
    EXPECT_LT(all, 10s);
}

TEST(CoroutineTest, ExceptionsReachTheAwaitingSide) {
    for (const bool later : {false, true}) {
        EXPECT_EQ(codeOf([&] { await(fail(E_BOUNDS, later)); }), E_BOUNDS);
        // Through several levels and threads, and what catches it goes on where it was.
        await([](bool later) -> IAsyncAction {
            co_await winrt::resume_foreground(dispatcher());
            winrt::hstring message;
            try {
                co_await [](bool later) -> IAsyncAction { co_await fail(E_FAIL, later); }(later);
                ADD_FAILURE() << "went on after a failure";
            } catch (const winrt::hresult_error& error) {
                message = error.message();
            }
            EXPECT_EQ(message, L"failed");
            EXPECT_TRUE(isOnUIThread());
            // Nobody waits for this one: its failure goes nowhere.
            fail(E_FAIL, later);
        }(later));
    }
}

TEST(CoroutineTest, FrameIsGoneBeforeTheEndIsAnnounced) {
    for (const bool fails : {false, true}) {
        for (const bool onUIThread : {false, true}) {
            await([](bool fails, bool onUIThread) -> IAsyncAction {
                if (onUIThread) {
                    co_await winrt::resume_foreground(dispatcher());
                }
                const auto parameterGone = std::make_shared<std::atomic<bool>>(false);
                const auto localGone = std::make_shared<std::atomic<bool>>(false);
                auto operation = [](std::shared_ptr<void>, Flag localGone, bool fails) -> IAsyncAction {
                    const auto local = resource(localGone);
                    co_await winrt::resume_after(2ms);
                    if (fails) {
                        throw winrt::hresult_error(E_FAIL);
                    }
                }(resource(parameterGone), localGone, fails);
                EXPECT_FALSE(*localGone);
                bool failed = false;
                try {
                    co_await operation;
                } catch (const winrt::hresult_error&) {
                    failed = true;
                }
                EXPECT_EQ(failed, fails);
                EXPECT_TRUE(*parameterGone);
                EXPECT_TRUE(*localGone);
            }(fails, onUIThread));
        }
    }
}

TEST(CoroutineTest, PostedWorkRunsInOrderAndInTurn) {
    constexpr int perThread = 500;
    std::vector<std::vector<int>> order(3);
    std::atomic<bool> running = false;
    {
        std::vector<std::jthread> threads;
        threads.reserve(order.size());
        for (auto& mine : order) {
            threads.emplace_back([&mine, &running] {
                for (int i = 0; i < perThread; ++i) {
                    dispatcher().RunAsync(CoreDispatcherPriority::Normal, [&mine, &running, i] {
                        EXPECT_FALSE(running.exchange(true)) << "work runs inside other work";
                        mine.push_back(i);
                        running = false;
                    });
                }
            });
        }
    }
    await(dispatcher().RunAsync(CoreDispatcherPriority::Normal, [] {}));
    std::vector<int> expected(perThread);
    std::iota(expected.begin(), expected.end(), 0);
    for (const auto& mine : order) {
        EXPECT_EQ(mine, expected);
    }
}

// What is posted on the thread itself, or resumed there, waits for its turn too.
TEST(CoroutineTest, WorkPostedByWorkRunsAfterwards) {
    std::vector<int> order;
    await([](std::vector<int>* order) -> IAsyncAction {
        co_await winrt::resume_foreground(dispatcher());
        dispatcher().RunAsync(CoreDispatcherPriority::Normal, [order] { order->push_back(2); });
        order->push_back(1);
        co_await winrt::resume_foreground(dispatcher());
        order->push_back(3);
    }(&order));
    EXPECT_EQ(order, (std::vector{1, 2, 3}));
}

TEST(CoroutineTest, FailureOfPostedWorkIsItsOperationsFailure) {
    EXPECT_EQ(codeOf([] {
                  await(dispatcher().RunAsync(CoreDispatcherPriority::Normal,
                                              [] { throw winrt::hresult_error(E_ILLEGAL_METHOD_CALL); }));
              }),
              E_ILLEGAL_METHOD_CALL);
    // When nobody waits it goes nowhere, and the queue works on.
    dispatcher().RunAsync(CoreDispatcherPriority::Normal, [] { throw std::runtime_error("unheard"); });
    bool ran = false;
    await(dispatcher().RunAsync(CoreDispatcherPriority::Normal, [&] { ran = true; }));
    EXPECT_TRUE(ran);
}

TEST(CoroutineTest, ThousandsOfOperationsFromManyThreads) {
    constexpr int threadCount = 4;
    constexpr int perThread = 500;
    std::atomic<int64_t> sum = 0;
    std::atomic<int> wrongThread = 0;
    {
        std::vector<std::jthread> threads;
        threads.reserve(threadCount);
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([&] {
                std::vector<IAsyncAction> all;
                all.reserve(perThread);
                for (int32_t i = 0; i < perThread; ++i) {
                    all.push_back([](int32_t i, auto* sum, auto* wrongThread) -> IAsyncAction {
                        if (i % 2 == 0) {
                            co_await winrt::resume_foreground(dispatcher());
                        }
                        const bool home = isOnUIThread();
                        *sum += co_await number(i, std::chrono::milliseconds(i % 3));
                        *wrongThread += isOnUIThread() != home;
                    }(i, &sum, &wrongThread));
                }
                for (auto& operation : all) {
                    await(std::move(operation));
                }
            });
        }
    }
    EXPECT_EQ(sum, int64_t{threadCount} * perThread * (perThread - 1) / 2);
    EXPECT_EQ(wrongThread, 0);
}

// An operation that has ended already is awaited in place.
TEST(CoroutineTest, LoopsOverEndedOperationsNeedNoStack) {
    await([]() -> IAsyncAction {
        int64_t sum = 0;
        for (int32_t i = 0; i < 200'000; ++i) {
            sum += co_await number(1, 0ms);
        }
        EXPECT_EQ(sum, 200'000);
    }());
}

TEST(EventTest, AddingAndRaisingMeetOnSeveralThreads) {
    winrt::event<TypedEventHandler<int, int>> event;
    std::atomic<int> calls = 0;
    {
        std::vector<std::jthread> threads;
        threads.reserve(3);
        for (int thread = 0; thread < 3; ++thread) {
            threads.emplace_back([&] {
                for (int i = 0; i < 100; ++i) {
                    event.add([&](int, int) { ++calls; });
                    event(0, 0);
                }
            });
        }
    }
    EXPECT_GE(calls, 300);
    calls = 0;
    event(0, 0);
    EXPECT_EQ(calls, 300);
}
