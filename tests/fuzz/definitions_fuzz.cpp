// definitions_fuzz.cpp: arbitrary bytes as ovsdef.dat through LoadReferenceFiles on the
// memory back-end. Every allocation of the load is watched: none may be driven by a length
// prefix. The file's buffer is the input's size; the tables' arrays hold a string object (32
// bytes) per line and a line takes at least 5 bytes of input, so 16 times the input with
// room for doubling, plus a floor for the forms and the error log, bounds every legitimate
// allocation.
#include <sanitizer/allocator_interface.h>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "FuzzSetup.h"
#include "definitions/DefinitionLoader.h"

namespace {

std::size_t g_limit = 0;  // 0: not watching

// Called by the sanitizer's allocator after every allocation.
void WatchAllocation(const volatile void*, std::size_t size) {
    if (g_limit != 0 && size > g_limit) {
        std::fprintf(stderr, "allocation of %zu bytes beyond the limit of %zu\n", size, g_limit);
        std::abort();
    }
}

void IgnoreFree(const volatile void*) {}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    __sanitizer_install_malloc_and_free_hooks(WatchAllocation, IgnoreFree);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    FreshInput().addFile(kFolder + "\\ovsdef.dat", WithFewFailures(Bytes(data, size)));
    orvex::App().SystemFolder = "C:\\WINDOWS\\system32";
    orvex::App().WindowsFolder = "C:\\WINDOWS";
    g_limit = 16 * size + 64 * 1024;
    orvex::LoadReferenceFiles();
    g_limit = 0;
    return 0;
}
