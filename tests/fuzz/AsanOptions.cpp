// AsanOptions.cpp: AddressSanitizer's settings for every fuzz target, linked into each.

// A freed block waits in the quarantine so that a late use of it is caught. The default of
// 256 MB makes every input's allocations land on fresh pages, a third of a target's time;
// one input frees far less than 16 MB, so a use after free within an input is still caught.
extern "C" const char* __asan_default_options() {
    return "quarantine_size_mb=16";
}
