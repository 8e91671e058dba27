// Win32Errors.h: the one translation of Win32 error codes into classic failure numbers.
#pragma once

#include <cstdint>

namespace orvex::platform::win32 {

// The classic failure number of a Win32 error code (GetLastError). `isFolder` tells a
// missing folder (76) from a missing file (53) where Windows reports both as "not found".
int FailureFromWin32(std::uint32_t error, bool isFolder = false);

// Raises the failure of GetLastError().
[[noreturn]] void RaiseLastError(bool isFolder = false);

}  // namespace orvex::platform::win32
