// SleepingChild.h: this test program as a harmless process to start and end under Wine,
// which has no long-running program that needs neither console nor display.
#pragma once

#include <windows.h>

#include <cstring>
#include <string>

namespace orvex::testing {

inline constexpr const char* kSleepArgument = "--orvex-sleeping-child";
inline constexpr DWORD kChildSleepMs = 60000;
inline constexpr DWORD kChildUnendedExitCode = 3;

// A copy started with kSleepArgument sleeps before any test runs, then leaves on its own.
[[maybe_unused]] inline const bool kSleepingChild = [] {
    if (std::strstr(GetCommandLineA(), kSleepArgument) != nullptr) {
        Sleep(kChildSleepMs);
        ExitProcess(kChildUnendedExitCode);
    }
    return false;
}();

inline std::string ThisExecutable() {
    char path[MAX_PATH + 1] = {};
    GetModuleFileNameA(nullptr, path, MAX_PATH);
    return path;
}

}  // namespace orvex::testing
