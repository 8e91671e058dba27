// Win32Processes_test.cpp: what only the Win32 process back-end shows: the version each
// Wine prefix reports and the Toolhelp snapshot order.
#include "platform/win32/Win32Processes.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it builds on.
#include <tlhelp32.h>

#include <algorithm>
#include <cctype>

#include "win32/SleepingChild.h"

namespace orvex::platform::win32 {
namespace {

using testing::ThisExecutable;

std::string Lower(std::string text) {
    for (char& c : text)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return text;
}

std::string FileName(const std::string& path) {
    return path.substr(path.rfind('\\') + 1);
}

TEST(Win32Processes, DefaultPrefixReportsVistaOrLater) {
    std::optional<OsVersion> version = Win32Processes().osVersion();
    ASSERT_TRUE(version.has_value());
    EXPECT_EQ(version->platformId, 2u);
    EXPECT_GE(version->major, 6u);
}

TEST(Win32Processes, Nt5PrefixReportsMajorVersionFive) {
    std::optional<OsVersion> version = Win32Processes().osVersion();
    ASSERT_TRUE(version.has_value());
    EXPECT_EQ(version->platformId, 2u);
    EXPECT_EQ(version->major, 5u);
}

TEST(Win32Processes, ToolhelpListStartsWithTheSnapshotsFirstEntry) {
    std::vector<std::string> names = Win32Processes().listImageNames();
    ASSERT_FALSE(names.empty());
    EXPECT_NE(std::find_if(names.begin(), names.end(),
                           [](const std::string& name) {
                               return Lower(FileName(name)) == Lower(FileName(ThisExecutable()));
                           }),
              names.end());

    HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    ASSERT_NE(snapshot, INVALID_HANDLE_VALUE);
    PROCESSENTRY32 first{};
    first.dwSize = sizeof first;
    ASSERT_TRUE(Process32First(snapshot, &first));
    CloseHandle(snapshot);
    EXPECT_EQ(names.front(), first.szExeFile);
    for (const std::string& name : names)
        EXPECT_EQ(name.find('\0'), std::string::npos);
}

}  // namespace
}  // namespace orvex::platform::win32
