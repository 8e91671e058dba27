// loggedtxt_fuzz.cpp: arbitrary bytes as Logged.txt, and as the error log beside it, through
// the log viewer's load on the memory back-end.
#include "FuzzSetup.h"
#include "pages/LogPage.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    auto& files = FreshInput();
    const std::string bytes = Bytes(data, size);
    files.addFile(kFolder + "\\Logged.txt", WithFewFailures(bytes));
    // An odd first byte puts the same bytes into the error log, which a trimmed view rewrites.
    if (size > 0 && (data[0] & 1) != 0) files.addFile(kFolder + "\\ovs.ph", bytes);
    orvex::frmlog();  // loading the form loads both logs
    return 0;
}
