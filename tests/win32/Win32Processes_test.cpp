// Win32Processes_test.cpp: what only the Win32 process back-end shows: the version each
// Wine prefix reports and the Toolhelp snapshot order.
#include "platform/win32/Win32Processes.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it builds on.
#include <tlhelp32.h>

namespace orvex::platform::win32 {
namespace {

TEST(Win32Processes, Nt5PrefixReportsMajorVersionFive) {
    const auto version = Win32Processes().osVersion();
    ASSERT_TRUE(version.has_value());
    EXPECT_EQ(version->platformId, 2u);
    EXPECT_EQ(version->major, 5u);
}

TEST(Win32Processes, DefaultPrefixReportsVistaOrLaterAndListsInToolhelpOrder) {
    EXPECT_GE(Win32Processes().osVersion()->major, 6u);
    const std::vector<std::string> names = Win32Processes().listImageNames();
    ASSERT_FALSE(names.empty());
    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    ASSERT_NE(snapshot, INVALID_HANDLE_VALUE);
    PROCESSENTRY32 first{};
    first.dwSize = sizeof first;
    ASSERT_TRUE(Process32First(snapshot, &first));
    CloseHandle(snapshot);
    EXPECT_EQ(names.front(), first.szExeFile);
}

}  // namespace
}  // namespace orvex::platform::win32
