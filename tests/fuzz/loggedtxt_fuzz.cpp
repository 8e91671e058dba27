// loggedtxt_fuzz.cpp: arbitrary bytes as Logged.txt, and as the error log beside it, through
// the log viewer's load on the memory back-end.
#include "FuzzSetup.h"
#include "pages/LogPage.h"
#include "ui/Form.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace orvex::fuzz;
    auto& files = Machine().files;
    const std::string bytes = Bytes(data, size);
    const std::string errorLog = kFolder + "\\ovs.ph";
    UseProgramFolder();
    files.addFile(kFolder + "\\Logged.txt", bytes);
    // An odd first byte puts the same bytes into the error log, which a trimmed view rewrites.
    if (size > 0 && (data[0] & 1) != 0)
        files.addFile(errorLog, bytes);
    else if (files.exists(errorLog))
        files.remove(errorLog);
    orvex::frmlog();  // loading the form loads both logs
    orvex::ui::ResetForms();
    return 0;
}
