// The sanitizers' options, compiled into every test program so that they hold however it is started.

#include <cstdlib>

// Options of a program's own: ":name=value".
#ifndef ZARVIK_SANITIZER_OPTIONS
#define ZARVIK_SANITIZER_OPTIONS ""
#endif

#define ZARVIK_SANITIZER_TEXT(function) \
    extern "C" __attribute__((used, visibility("default"))) const char* function()

#if __has_feature(address_sanitizer)
// A small quarantine, so that the tests which watch the process's memory see the library's and not this.
ZARVIK_SANITIZER_TEXT(__asan_default_options) {
    return "strict_string_checks=1:check_initialization_order=1:quarantine_size_mb=4";
}
ZARVIK_SANITIZER_TEXT(__ubsan_default_options) {
    return "print_stacktrace=1";
}

// Memory that a library keeps for the life of the process, or refers to from memory that is not malloc's.
ZARVIK_SANITIZER_TEXT(__lsan_default_suppressions) {
    return "leak:libfontconfig.so\n"
           "leak:libjavascriptcoregtk-4.1.so\n";
}

// GTK's accessibility bridge leaks as it starts, and its stacks do not name it.
[[gnu::constructor]] static void disableAccessibilityBridge() {
    setenv("NO_AT_BRIDGE", "1", 1);
}
#endif

#if __has_feature(thread_sanitizer)
// The system's libraries are not instrumented: their locks are invisible, so their own accesses prove
// nothing.
ZARVIK_SANITIZER_TEXT(__tsan_default_options) {
    return "ignore_noninstrumented_modules=1:second_deadlock_stack=1" ZARVIK_SANITIZER_OPTIONS;
}

// The browser engine's collector stops threads with signals. The sanitizer delivers a signal late, and one
// that arrives meanwhile makes it forget the thread's signal mask: every signal stays blocked, and the next
// collection waits for ever. So this process collects nothing, and neither do the pages that it starts.
[[gnu::constructor]] static void disableCollector() {
    setenv("JSC_useGC", "false", 1);
}
#endif
