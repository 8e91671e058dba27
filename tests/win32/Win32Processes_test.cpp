// Win32Processes_test.cpp: process lists, GetVersionEx and ending a started process under
// Wine. The child process is a copy of this test program that only sleeps: Wine has no
// harmless long-running program that runs without a console or display.
#include "platform/win32/Win32Processes.h"

#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which it builds on.
#include <tlhelp32.h>

#include <algorithm>
#include <cctype>
#include <set>

#include "win32/SleepingChild.h"

namespace orvex::platform::win32 {
namespace {

using testing::kChildUnendedExitCode;
using testing::kSleepArgument;
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

TEST(Win32Processes, PsapiListHoldsThisProcessWithItsPath) {
    Win32Processes processes;
    std::vector<ProcessEntry> list = processes.listWithPaths();
    auto self = std::find_if(list.begin(), list.end(), [&](const ProcessEntry& entry) {
        return entry.pid == processes.currentProcessId();
    });
    ASSERT_NE(self, list.end());
    EXPECT_EQ(Lower(self->imagePath), Lower(ThisExecutable()));
    EXPECT_EQ(processes.currentProcessId(), GetCurrentProcessId());
    std::set<std::uint32_t> ids;
    for (const ProcessEntry& entry : list)
        ids.insert(entry.pid);
    EXPECT_EQ(ids.size(), list.size());
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

// The ids of the running copies of this program other than this one.
std::set<std::uint32_t> OtherCopies(Win32Processes& processes) {
    std::set<std::uint32_t> ids;
    for (const ProcessEntry& entry : processes.listWithPaths()) {
        if (entry.pid != processes.currentProcessId() &&
            Lower(entry.imagePath) == Lower(ThisExecutable())) {
            ids.insert(entry.pid);
        }
    }
    return ids;
}

TEST(Win32Processes, StartedChildIsEndedByTerminate) {
    Win32Processes processes;
    const std::set<std::uint32_t> before = OtherCopies(processes);
    ASSERT_TRUE(processes.start(ThisExecutable(), kSleepArgument, true));

    std::set<std::uint32_t> started;
    for (int wait = 0; wait < 100 && started.empty(); ++wait) {
        for (std::uint32_t pid : OtherCopies(processes)) {
            if (!before.count(pid)) started.insert(pid);
        }
        if (started.empty()) Sleep(50);
    }
    ASSERT_EQ(started.size(), 1u);
    const std::uint32_t child = *started.begin();

    HANDLE watch = OpenProcess(SYNCHRONIZE | PROCESS_QUERY_INFORMATION, FALSE, child);
    ASSERT_NE(watch, nullptr);
    EXPECT_TRUE(processes.terminate(child));
    EXPECT_EQ(WaitForSingleObject(watch, 10000), WAIT_OBJECT_0);
    DWORD exitCode = kChildUnendedExitCode;
    GetExitCodeProcess(watch, &exitCode);
    EXPECT_EQ(exitCode, 0u);
    CloseHandle(watch);
}

TEST(Win32Processes, NothingToEndOrStartFails) {
    Win32Processes processes;
    EXPECT_FALSE(processes.terminate(0xFFFFFFF0u));
    EXPECT_FALSE(processes.start("C:\\no such folder\\none.exe", "", true));
}

}  // namespace
}  // namespace orvex::platform::win32
