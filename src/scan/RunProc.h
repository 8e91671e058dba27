// RunProc.h: clsRunProc, which tells the Windows family and lists and ends processes.
#pragma once

#include <cstdint>

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
    // The family from the reported version; anything past major version 5 is unknown.
    std::uint8_t OS();
};

}  // namespace orvex
