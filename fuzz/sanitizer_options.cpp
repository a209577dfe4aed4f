// Small pieces of memory come and go by the thousand for each input: no long list of callers for each of them, and a
// short wait before they are had again.
extern "C" const char* __asan_default_options();
extern "C" const char* __asan_default_options() {
    return "malloc_context_size=2:quarantine_size_mb=4:thread_local_quarantine_size_kb=64:detect_leaks=0";
}
