// RunProc.cpp: the Windows family table.
#include "scan/RunProc.h"

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

}  // namespace orvex

namespace orvex {

std::vector<std::string> clsRunProc::RunningProcs() {
    return {};
}

void clsRunProc::KillProcessById(std::uint32_t) {}

void clsRunProc::KillApp(const std::string&, bool& found) {
    found = false;
}

}  // namespace orvex
