// The sanitizers' options, compiled into every test program so that they hold however it is started.

#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define ZARVIK_SANITIZER_TEXT(function) \
    extern "C" __attribute__((used, visibility("default"))) const char* function()
#endif

#if __has_feature(address_sanitizer)
// The system's libraries have no frame pointers: only the slow unwinder sees the callers that are named below.
ZARVIK_SANITIZER_TEXT(__asan_default_options) {
    return "fast_unwind_on_malloc=0:strict_string_checks=1:check_initialization_order=1";
}

// Memory that a library keeps for the life of the process, or refers to from memory of its own allocator.
ZARVIK_SANITIZER_TEXT(__lsan_default_suppressions) {
    return "leak:atk_bridge_adaptor_init\n"
           "leak:JSGlobalContextCreateInGroup\n";
}

ZARVIK_SANITIZER_TEXT(__ubsan_default_options) {
    return "print_stacktrace=1";
}
#endif

#if __has_feature(thread_sanitizer)
// The system's libraries are not instrumented: their locks are invisible, so their own accesses prove
// nothing.
ZARVIK_SANITIZER_TEXT(__tsan_default_options) {
    return "ignore_noninstrumented_modules=1:second_deadlock_stack=1";
}
#endif
