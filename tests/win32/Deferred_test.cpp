// Deferred_test.cpp: a file held open without sharing, wiped on Windows XP (its delete queued
// in the registry) and, in a child that Wine tells it is Windows 98, through WININIT.INI;
// a restart of the prefix carries out either.
#include <gtest/gtest.h>
#include <windows.h>
// The program's own ExitWindows, not the macro of windows.h.
#undef ExitWindows

#include <cstring>
#include <memory>
#include <string>

#include "SleepingChild.h"
#include "app/ProcessState.h"
#include "core/AppState.h"
#include "core/TextFile.h"
#include "platform/Platform.h"
#include "removal/Deferred.h"

namespace orvex {
namespace {

using testing::Exists;
using testing::RunAndWait;
using testing::TempFolder;

const char* const kSessionManager = "System\\CurrentControlSet\\Control\\Session Manager";
const char* const kWipeArgument = "--orvex-wipe-child ";
constexpr DWORD kWiped = 1;
constexpr DWORD kRestartNeeded = 2;

std::string WindowsFolder() {
    char folder[MAX_PATH + 1] = {};
    GetWindowsDirectoryA(folder, MAX_PATH);
    return folder;
}

// A new file, held open without sharing until the handle is closed.
HANDLE HoldNewFile(const std::string& path) {
    HANDLE held = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                              FILE_ATTRIBUTE_READONLY, nullptr);
    DWORD written = 0;
    WriteFile(held, "MZ", 2, &written, nullptr);
    return held;
}

// WipeFile of a file held open, with the kWiped and kRestartNeeded bits as the exit code.
DWORD WipeHeldFile(const std::string& path) {
    HANDLE held = HoldNewFile(path);
    auto host = platform::MakeHostPlatform();
    platform::ScopedPlatform installed(host->view());
    const bool wiped = WipeFile(path);
    CloseHandle(held);
    return (wiped ? kWiped : 0) | (IsTrue(App().RestartNeeded) ? kRestartNeeded : 0);
}

// A child started with kWipeArgument and a path wipes that file and ends.
[[maybe_unused]] const bool kWipeChild = [] {
    const char* found = std::strstr(GetCommandLineA(), kWipeArgument);
    if (found != nullptr) ExitProcess(WipeHeldFile(found + std::strlen(kWipeArgument)));
    return false;
}();

std::string PendingRenames() {
    char data[1 << 16];
    DWORD size = sizeof data;
    if (RegGetValueA(HKEY_LOCAL_MACHINE, kSessionManager, "PendingFileRenameOperations",
                     RRF_RT_REG_MULTI_SZ, nullptr, data, &size) != ERROR_SUCCESS)
        return "";
    return std::string(data, size);
}

long RestartPrefix() {
    return RunAndWait("wineboot.exe --restart");
}

TEST(DeferredNt5, AFileInUseIsQueuedInTheRegistryAndGoneAfterARestart) {
    ResetProcessState();
    const std::string path = TempFolder() + "orvexdeferrednt5.dll";
    EXPECT_EQ(WipeHeldFile(path), kWiped | kRestartNeeded);
    // Queued as a delete: the name, then an empty target.
    EXPECT_NE(PendingRenames().find(path + std::string(2, '\0')), std::string::npos);
    EXPECT_TRUE(Exists(path));

    ASSERT_EQ(RestartPrefix(), 0);
    EXPECT_FALSE(Exists(path));
    EXPECT_EQ(PendingRenames().find(path), std::string::npos);
    ResetProcessState();
}

// Wine reports Windows 98 to a program named in AppDefaults; a copy of this program under
// its own name is that child.
class DeferredWin98 : public ::testing::Test {
  protected:
    DeferredWin98() {
        RegSetKeyValueA(HKEY_CURRENT_USER, kAppDefaults.c_str(), "Version", REG_SZ, "win98", 6);
        CopyFileA(testing::ThisExecutable().c_str(), child_.c_str(), FALSE);
        RemoveWininit();
    }
    ~DeferredWin98() override {
        RegDeleteTreeA(HKEY_CURRENT_USER, kAppDefaults.c_str());
        DeleteFileA(child_.c_str());
        RemoveWininit();
    }

    static void RemoveWininit() {
        for (const char* name : {"\\WININIT.INI", "\\WININIT.TEMP", "\\wininit.bak"})
            DeleteFileA((WindowsFolder() + name).c_str());
    }

    long Wipe(const std::string& path) {
        return RunAndWait("\"" + child_ + "\" " + kWipeArgument + path);
    }

    const std::string kAppDefaults = "Software\\Wine\\AppDefaults\\orvexwin98.exe";

  private:
    std::string child_ = TempFolder() + "orvexwin98.exe";
    std::unique_ptr<platform::OwnedPlatform> host_ = platform::MakeHostPlatform();
    platform::ScopedPlatform installed_{host_->view()};
};

TEST_F(DeferredWin98, AFileInUseIsLeftToWininitAndGoneAfterARestart) {
    const std::string path = TempFolder() + "orvex deferred win98.dll";
    EXPECT_EQ(Wipe(path), static_cast<long>(kRestartNeeded));
    const std::string ini = WindowsFolder() + "\\WININIT.INI";
    char shortPath[MAX_PATH + 1] = {};
    GetShortPathNameA(path.c_str(), shortPath, MAX_PATH);
    EXPECT_EQ(ReadAllBytes(ini), "[rename]\r\nNUL=" + std::string(shortPath) + "\r\n");

    ASSERT_EQ(RestartPrefix(), 0);
    EXPECT_FALSE(Exists(path));
    EXPECT_FALSE(Exists(ini));
}

}  // namespace
}  // namespace orvex
