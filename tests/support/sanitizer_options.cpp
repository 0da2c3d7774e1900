// Lets the sanitizers' allocators refuse what memory cannot hold, as the system's allocator does,
// where tests ask for it on purpose.

extern "C" const char* __asan_default_options() { return "allocator_may_return_null=1"; }
extern "C" const char* __tsan_default_options() { return "allocator_may_return_null=1"; }
