// DeferredNt5_test.cpp: a file held open without sharing, wiped on the NT family: its delete
// is queued in the registry, and a restart of the prefix carries it out.
#include <gtest/gtest.h>
#include <windows.h>
// The program's own ExitWindows, not the macro of windows.h.
#undef ExitWindows

#include <memory>
#include <string>

#include "app/ProcessState.h"
#include "core/AppState.h"
#include "platform/Platform.h"
#include "removal/Deferred.h"

namespace orvex {
namespace {

const char* const kSessionManager = "System\\CurrentControlSet\\Control\\Session Manager";

std::string PendingRenames() {
    char data[1 << 16];
    DWORD size = sizeof data;
    if (RegGetValueA(HKEY_LOCAL_MACHINE, kSessionManager, "PendingFileRenameOperations",
                     RRF_RT_REG_MULTI_SZ, nullptr, data, &size) != ERROR_SUCCESS)
        return "";
    return std::string(data, size);
}

// Runs a program of the prefix and waits for it; its exit code, or -1 when it did not end.
long RunAndWait(std::string commandLine) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started{};
    if (!CreateProcessA(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &started))
        return -1;
    DWORD code = 0;
    const bool ended = WaitForSingleObject(started.hProcess, 60000) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(started.hProcess, &code);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    return ended ? static_cast<long>(code) : -1;
}

TEST(DeferredNt5, AFileInUseIsDeletedAtTheNextStart) {
    ResetProcessState();
    auto host = platform::MakeHostPlatform();
    platform::ScopedPlatform installed(host->view());
    char temp[MAX_PATH + 1] = {};
    GetTempPathA(MAX_PATH, temp);
    const std::string path = std::string(temp) + "orvexdeferrednt5.dll";
    HANDLE held = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_READONLY, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    DWORD written = 0;
    WriteFile(held, "MZ", 2, &written, nullptr);

    EXPECT_TRUE(WipeFile(path));
    CloseHandle(held);
    EXPECT_EQ(App().RestartNeeded, VbTrue);
    // Queued as a delete: the name, then an empty target.
    EXPECT_NE(PendingRenames().find(path + std::string(1, '\0') + std::string(1, '\0')),
              std::string::npos);
    EXPECT_NE(GetFileAttributesA(path.c_str()), INVALID_FILE_ATTRIBUTES);

    ASSERT_EQ(RunAndWait("wineboot.exe --restart"), 0);
    EXPECT_EQ(GetFileAttributesA(path.c_str()), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(PendingRenames().find(path), std::string::npos);
    ResetProcessState();
}

}  // namespace
}  // namespace orvex
