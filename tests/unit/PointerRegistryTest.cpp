#include "exports/PointerRegistry.h"

#include <gtest/gtest.h>

#include <set>
#include <thread>

#include "webview/UwpWebView.h"

namespace {

// The counter of keys, brought near its end without depositing four thousand million pointers.
std::uint32_t& counterOf(PointerRegistry& registry);

template <auto member>
struct Opened {
    friend std::uint32_t& counterOf(PointerRegistry& registry) { return registry.*member; }
};
template struct Opened<&PointerRegistry::counter>;

class PointerRegistryTest : public testing::Test {
  protected:
    std::shared_ptr<UwpWebView> makeView() {
        auto view = std::make_shared<UwpWebView>("target");
        registry.add(view);
        return view;
    }

    PointerRegistry registry;
};

}  // namespace

TEST_F(PointerRegistryTest, RemovalTakesOneEntryOfTheValue) {
    const auto view = makeView();
    const auto other = makeView();
    EXPECT_EQ(registry.deposit(other.get()), 0);
    const std::int32_t low = registry.deposit(view.get());
    const std::int32_t high = registry.deposit(view.get());
    EXPECT_EQ(low, 1);
    EXPECT_EQ(high, 2);
    for (const std::int32_t unknown : {3, -1, 2147483647, -2147483647 - 1}) {
        EXPECT_EQ(registry.findByKey(unknown), nullptr) << unknown;
    }
    registry.remove(view.get());
    EXPECT_EQ(registry.findByKey(low), nullptr);
    EXPECT_EQ(registry.findByKey(high), view);
    registry.remove(view.get());
    EXPECT_EQ(registry.findByKey(high), nullptr);
    registry.remove(view.get());
    registry.remove(nullptr);
    EXPECT_EQ(registry.findByKey(0), other);
    // A freed key is not handed out again.
    EXPECT_EQ(registry.deposit(view.get()), high + 1);
}

TEST_F(PointerRegistryTest, StalePointersMeanNothing) {
    auto view = makeView();
    const auto* const pointer = view.get();
    const std::int32_t key = registry.deposit(view.get());
    const std::weak_ptr<UwpWebView> watch = view;
    view.reset();
    EXPECT_NE(registry.find(pointer), nullptr);
    registry.release(pointer);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(registry.find(pointer), nullptr);
    EXPECT_EQ(registry.findByKey(key), nullptr);
    registry.release(pointer);
    int foreign = 0;
    EXPECT_EQ(registry.findByKey(registry.deposit(&foreign)), nullptr);
    EXPECT_EQ(registry.findByKey(registry.deposit(nullptr)), nullptr);
    EXPECT_EQ(registry.find(&foreign), nullptr);
    EXPECT_EQ(registry.find(nullptr), nullptr);
}

TEST_F(PointerRegistryTest, KeysWrapAroundPastThoseInUse) {
    const auto view = makeView();
    EXPECT_EQ(registry.deposit(view.get()), 0);
    counterOf(registry) = 0x7FFFFFFF;
    EXPECT_EQ(registry.deposit(view.get()), 2147483647);
    EXPECT_EQ(registry.deposit(view.get()), -2147483647 - 1);
    counterOf(registry) = 0xFFFFFFFF;
    EXPECT_EQ(registry.deposit(view.get()), -1);
    EXPECT_EQ(registry.deposit(view.get()), 1);  // 0 is still in use
    EXPECT_EQ(registry.findByKey(-1), view);
    // By value means in the order of the keys: the smallest goes first.
    registry.remove(view.get());
    EXPECT_EQ(registry.findByKey(-2147483647 - 1), nullptr);
    EXPECT_EQ(registry.findByKey(-1), view);
}

TEST_F(PointerRegistryTest, ServesManyThreads) {
    constexpr int threadCount = 4;
    constexpr int rounds = 1500;
    const auto shared = makeView();
    std::mutex mutex;
    std::multiset<std::int32_t> keys;
    {
        std::vector<std::jthread> threads;
        threads.reserve(threadCount);
        for (int thread = 0; thread < threadCount; ++thread) {
            threads.emplace_back([&] {
                std::vector<std::int32_t> mine;
                for (int round = 0; round < rounds; ++round) {
                    auto view = std::make_shared<UwpWebView>("target");
                    auto* const pointer = view.get();
                    registry.add(std::move(view));
                    const std::int32_t key = registry.deposit(pointer);
                    mine.push_back(key);
                    mine.push_back(registry.deposit(shared.get()));
                    EXPECT_EQ(registry.findByKey(key).get(), pointer);
                    EXPECT_EQ(registry.findByKey(mine.back()), shared);
                    registry.remove(pointer);
                    EXPECT_EQ(registry.findByKey(key), nullptr);
                    EXPECT_EQ(registry.find(pointer).get(), pointer);
                    registry.release(pointer);
                }
                const std::lock_guard lock(mutex);
                keys.insert(mine.begin(), mine.end());
            });
        }
    }
    EXPECT_EQ(keys.size(), 2U * threadCount * rounds);
    EXPECT_EQ(std::set(keys.begin(), keys.end()).size(), keys.size());
    for (int i = 0; i < threadCount * rounds; ++i) {
        registry.remove(shared.get());
    }
    for (const std::int32_t key : keys) {
        ASSERT_EQ(registry.findByKey(key), nullptr);
    }
    EXPECT_EQ(shared.use_count(), 2);
}
