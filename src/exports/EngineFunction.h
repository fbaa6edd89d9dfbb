#pragma once

#include <atomic>
#include <chrono>
#include <thread>

/// A function pointer of the engine that may be changed while it is being called. Any thread.
template <typename... Parameters>
class EngineFunction {
  public:
    using Pointer = void (*)(Parameters...);

    /// When null is set the engine is about to unload the code, so this returns only when no call is under
    /// way, except those further up on this thread's stack and those that take longer than `patience`: the
    /// engine may be stuck in its own code.
    void set(Pointer function) {
        // All operations are sequentially consistent: a call either is counted here or sees the new function.
        pointer = function;
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!function && callsUnderWay > callsOfThisThread && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    bool isSet() const { return pointer.load() != nullptr; }

    /// False if there is no function.
    bool call(Parameters... arguments) {
        const Count count(*this);
        const Pointer function = pointer;
        if (function) {
            function(arguments...);
        }
        return function != nullptr;
    }

  private:
    static constexpr std::chrono::seconds patience{1};

    class Count {
      public:
        explicit Count(EngineFunction& owner) : owner(owner) {
            ++owner.callsUnderWay;
            ++callsOfThisThread;
        }
        ~Count() {
            --callsOfThisThread;
            --owner.callsUnderWay;
        }
        Count(const Count&) = delete;
        Count& operator=(const Count&) = delete;

      private:
        EngineFunction& owner;
    };

    std::atomic<Pointer> pointer = nullptr;
    std::atomic<int> callsUnderWay = 0;
    // Of all functions with these parameters. An engine that clears one inside another may not be waited for.
    static inline thread_local int callsOfThisThread = 0;
};
