// loggedtxt_fuzz.cpp: arbitrary bytes as Logged.txt, and as the error log beside it, through
// the log viewer's load on the memory back-end.
#include <cstddef>
#include <cstdint>
#include <string>

#include "core/AppState.h"
#include "logs/LogPage.h"
#include "platform/memory/MemoryPlatform.h"
#include "ui/Form.h"

namespace {

const std::string kFolder = "C:\\Orvex";

orvex::platform::memory::MemoryPlatform& Machine() {
    static orvex::platform::memory::MemoryPlatform machine;
    static orvex::platform::ScopedPlatform installed{machine.view()};
    return machine;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    auto& machine = Machine();
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    orvex::App().AppPath = kFolder;
    orvex::App().DataFolder = kFolder + "\\";
    machine.files.addFile(kFolder + "\\Logged.txt", bytes);
    // An odd first byte puts the same bytes into the error log, which a trimmed view rewrites.
    if (size > 0 && (data[0] & 1) != 0)
        machine.files.addFile(kFolder + "\\ovs.ph", bytes);
    else if (machine.files.exists(kFolder + "\\ovs.ph"))
        machine.files.remove(kFolder + "\\ovs.ph");
    orvex::frmlog();  // loading the form loads both logs
    orvex::ui::ResetForms();
    return 0;
}
