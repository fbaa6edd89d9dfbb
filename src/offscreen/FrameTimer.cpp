#include "offscreen/FrameTimer.h"

#include <stdexcept>

#include "platform.h"

std::uint64_t FrameTimer::readFrequency() {
    LARGE_INTEGER frequency{};
    if (!QueryPerformanceFrequency(&frequency)) {
        throw std::runtime_error("QueryPerformanceFrequency");
    }
    return static_cast<std::uint64_t>(frequency.QuadPart);
}

std::uint64_t FrameTimer::readCounter() {
    LARGE_INTEGER counter{};
    if (!QueryPerformanceCounter(&counter)) {
        throw std::runtime_error("QueryPerformanceCounter");
    }
    return static_cast<std::uint64_t>(counter.QuadPart);
}
