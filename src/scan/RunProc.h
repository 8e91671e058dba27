// RunProc.h: clsRunProc, which tells the Windows family and lists and ends processes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvex {

// Windows families as the process code distinguishes them.
namespace oskind {
inline constexpr std::uint8_t kUnknown = 0;
inline constexpr std::uint8_t kNt351 = 1;
inline constexpr std::uint8_t kNt4 = 2;
inline constexpr std::uint8_t kWin95 = 3;
inline constexpr std::uint8_t kWin9x = 4;
inline constexpr std::uint8_t kNt5 = 5;
}  // namespace oskind

class clsRunProc {
  public:
    // One entry per process: "pid|path" on the NT families, the image path alone on 9x,
    // nothing on an unknown family.
    std::vector<std::string> RunningProcs();
    // The family from the reported version; anything past major version 5 is unknown.
    std::uint8_t OS();
    // Ends a process by id; a refusal is not shown.
    void KillProcessById(std::uint32_t pid);
    // Ends every process whose image name ends in `fileName`, ignoring case; `found` tells
    // whether any did.
    void KillApp(const std::string& fileName, bool& found);
};

}  // namespace orvex
