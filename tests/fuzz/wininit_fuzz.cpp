// wininit_fuzz.cpp: arbitrary bytes as WININIT.INI, copied field by field with a new line
// added at the end, on the memory back-end.
#include "FuzzSetup.h"
#include "removal/Deferred.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    orvex::platform::memory::MemoryFileSystem& files = FreshInput();
    files.addFile("C:\\WINDOWS\\WININIT.INI", Bytes(data, size));
    files.addFile("C:\\SPY.DLL");
    orvex::Create9xReboot("C:\\SPY.DLL", "NUL");
    // Whatever the fields were, the new line closes the file.
    const std::string ini = files.contents("C:\\WINDOWS\\WININIT.INI");
    const std::string line = "NUL=C:\\SPY.DLL\r\n";
    if (ini.size() < line.size() || ini.compare(ini.size() - line.size(), line.size(), line) != 0)
        __builtin_trap();
    return 0;
}
