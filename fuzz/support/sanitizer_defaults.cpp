// Sizes that no machine can hold are refused, as the system's allocator does. Short traces of
// allocations and a small quarantine make a fuzzer several times as fast.

extern "C" const char* __asan_default_options() {
  return "allocator_may_return_null=1:malloc_context_size=4:quarantine_size_mb=4";
}
extern "C" const char* __tsan_default_options() { return "allocator_may_return_null=1"; }
