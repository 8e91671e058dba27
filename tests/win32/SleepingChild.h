// SleepingChild.h: this test program as a harmless process to start and end under Wine,
// which has no long-running program that needs neither console nor display; and the
// helpers the Wine tests share to run programs and look at files.
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

inline std::string TempFolder() {
    char temp[MAX_PATH + 1] = {};
    GetTempPathA(MAX_PATH, temp);
    return temp;
}

inline bool Exists(const std::string& path) {
    return GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Runs a program to its end; its exit code, or -1 when it did not start or end in time.
inline long RunAndWait(std::string commandLine, DWORD flags = 0, DWORD timeoutMs = 60000) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, flags, nullptr,
                        nullptr, &startup, &started))
        return -1;
    DWORD code = 0;
    const bool ended = WaitForSingleObject(started.hProcess, timeoutMs) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(started.hProcess, &code);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return ended ? static_cast<long>(code) : -1;
}

}  // namespace orvex::testing
