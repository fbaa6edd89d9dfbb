#include "exports/EngineFunction.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <semaphore>
#include <thread>
#include <vector>

namespace {

std::binary_semaphore entered{0};
std::binary_semaphore mayLeave{0};
std::atomic<bool> unloaded = false;

void stay(int) {
    entered.release();
    mayLeave.acquire();
    EXPECT_FALSE(unloaded);
}

}  // namespace

TEST(EngineFunctionTest, IsNotBeingCalledOnceItIsCleared) {
    EngineFunction<int> function;
    EXPECT_FALSE(function.call(1));
    unloaded = false;
    function.set(stay);
    std::thread caller([&] { EXPECT_TRUE(function.call(1)); });
    entered.acquire();
    std::thread leaver([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        mayLeave.release();
    });
    function.set(nullptr);
    unloaded = true;
    EXPECT_FALSE(function.call(1));
    caller.join();
    leaver.join();

    // Where calls come all the time, none is made after its function was cleared.
    std::atomic<bool> done = false;
    std::vector<std::thread> callers;
    for (int i = 0; i < 3; ++i) {
        callers.emplace_back([&] {
            while (!done) {
                function.call(1);
            }
        });
    }
    for (int i = 0; i < 50; ++i) {
        unloaded = false;
        function.set([](int) { EXPECT_FALSE(unloaded); });
        std::this_thread::yield();
        function.set(nullptr);
        unloaded = true;
    }
    done = true;
    for (auto& each : callers) {
        each.join();
    }
}

TEST(EngineFunctionTest, DoesNotWaitForEverForAnEngineThatIsStuck) {
    EngineFunction<int> function;
    unloaded = false;
    function.set(stay);
    std::thread caller([&] { function.call(1); });
    entered.acquire();
    function.set(nullptr);
    mayLeave.release();
    caller.join();

    // A function that clears itself would wait for its own end.
    static EngineFunction<int> own;
    own.set([](int) { own.set(nullptr); });
    EXPECT_TRUE(own.call(1));
    EXPECT_FALSE(own.isSet());
}
