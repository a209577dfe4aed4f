// Each input makes thousands of small allocations: record short call stacks for them, and keep freed memory only
// briefly.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "malloc_context_size=2:quarantine_size_mb=4:thread_local_quarantine_size_kb=64:detect_leaks=0";
}
