#include <windows.h>

#include <ctime>

namespace {

constexpr LONGLONG ticksPerSecond = 10'000'000;
constexpr LONGLONG nanosecondsPerTick = 1'000'000'000 / ticksPerSecond;

thread_local DWORD lastError = 0;

}  // namespace

BOOL WINAPI QueryPerformanceCounter(LARGE_INTEGER* counter) {
    timespec now{};
    if (clock_gettime(CLOCK_MONOTONIC, &now) != 0) {
        SetLastError(static_cast<DWORD>(E_FAIL));
        return FALSE;
    }
    counter->QuadPart = now.tv_sec * ticksPerSecond + now.tv_nsec / nanosecondsPerTick;
    return TRUE;
}

BOOL WINAPI QueryPerformanceFrequency(LARGE_INTEGER* frequency) {
    frequency->QuadPart = ticksPerSecond;
    return TRUE;
}

DWORD WINAPI GetLastError() {
    return lastError;
}

void WINAPI SetLastError(DWORD code) {
    lastError = code;
}
