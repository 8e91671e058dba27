// RunProc.cpp: the Windows family table, the process list in the family's form, and
// ending processes by id or by name.
#include "scan/RunProc.h"

#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "platform/Platform.h"

namespace orvex {

std::uint8_t clsRunProc::OS() {
    const auto version = platform::Processes().osVersion();
    if (!version) return oskind::kUnknown;
    const auto [id, major, minor] = *version;
    if (id == 1 && major == 4) return minor == 0 ? oskind::kWin95 : oskind::kWin9x;
    if (id == 2 && major == 3 && minor == 51) return oskind::kNt351;
    if (id == 2 && major == 4 && minor == 0) return oskind::kNt4;
    if (id == 2 && major == 5) return oskind::kNt5;
    return oskind::kUnknown;
}

std::vector<std::string> clsRunProc::RunningProcs() {
    std::vector<std::string> list;
    const std::uint8_t family = OS();
    if (family == oskind::kNt4 || family == oskind::kNt5) {
        // A process that can't be opened or read (the system's own) is not listed at all.
        for (const auto& process : platform::Processes().listWithPaths()) {
            if (process.imagePath.empty()) continue;
            list.push_back(std::to_string(process.pid) + "|" + Trim(process.imagePath));
        }
    } else if (family == oskind::kWin95 || family == oskind::kWin9x) {
        list = platform::Processes().listImageNames();
    }
    return list;
}

void clsRunProc::KillProcessById(std::uint32_t pid) {
    Procedure proc("clsRunProc", "KillProcessById");
    proc.Run([&] { platform::Processes().terminate(pid); });
}

// The process list by name carries no ids, so the ids come from the list with paths; the
// test is on the end of the image path alone, as the snapshot's names are compared.
void clsRunProc::KillApp(const std::string& fileName, bool& found) {
    Procedure proc("clsRunProc", "KillApp 9x");
    found = false;
    proc.Run([&] {
        const std::string wanted = LCase(fileName);
        // An empty name would end with everything.
        if (wanted.empty()) return;
        for (const auto& process : platform::Processes().listWithPaths()) {
            const std::string name =
                LCase(process.imagePath.substr(0, process.imagePath.find('\0')));
            if (!EndsWith(name, wanted)) continue;
            found = true;
            platform::Processes().terminate(process.pid);
        }
    });
}

}  // namespace orvex
