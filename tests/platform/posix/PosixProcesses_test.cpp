// PosixProcesses_test.cpp: the /proc process list, terminate and start on this machine.
#include "platform/posix/PosixProcesses.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <thread>

namespace orvex::platform {
namespace {

std::string SelfExe() {
    return std::filesystem::read_symlink("/proc/self/exe").string();
}

std::string ProcFile(std::uint32_t pid, const char* name) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/" + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

// The pid of the process whose command line is exactly `cmdline` (NUL-separated).
std::uint32_t FindByCommandLine(const std::string& cmdline) {
    for (const auto& e : std::filesystem::directory_iterator("/proc")) {
        std::string name = e.path().filename().string();
        if (name.find_first_not_of("0123456789") != std::string::npos) continue;
        auto pid = static_cast<std::uint32_t>(std::stoul(name));
        if (ProcFile(pid, "cmdline") == cmdline) return pid;
    }
    return 0;
}

std::uint32_t WaitForCommandLine(const std::string& cmdline) {
    for (int i = 0; i < 200; ++i) {
        if (std::uint32_t pid = FindByCommandLine(cmdline)) return pid;
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return 0;
}

// Gone, or a zombie that someone else must reap: nothing is left for this process.
bool GoneFromUs(std::uint32_t pid) {
    std::string status = ProcFile(pid, "status");
    if (status.empty()) return true;
    bool zombie = status.find("State:\tZ") != std::string::npos;
    bool ours = status.find("PPid:\t" + std::to_string(::getpid()) + "\n") != std::string::npos;
    return zombie && !ours;
}

TEST(PosixProcesses, ReportsNt5SoTheEngineTakesItsNtPaths) {
    auto v = PosixProcesses().osVersion();
    ASSERT_TRUE(v.has_value());
    EXPECT_EQ(v->platformId, 2u);
    EXPECT_EQ(v->major, 5u);
    EXPECT_EQ(v->minor, 1u);
}

TEST(PosixProcesses, ListsItselfWithItsPathAndImageName) {
    PosixProcesses processes;
    auto pid = processes.currentProcessId();
    EXPECT_EQ(pid, static_cast<std::uint32_t>(::getpid()));

    auto list = processes.listWithPaths();
    EXPECT_TRUE(
        std::is_sorted(list.begin(), list.end(), [](auto& a, auto& b) { return a.pid < b.pid; }));
    auto self = std::find_if(list.begin(), list.end(), [&](auto& p) { return p.pid == pid; });
    ASSERT_NE(self, list.end());
    EXPECT_EQ(self->imagePath, EnginePathFromNative(SelfExe()));
    EXPECT_EQ(self->imagePath.rfind("C:\\", 0), 0u);

    auto names = processes.listImageNames();
    std::string base = std::filesystem::path(SelfExe()).filename().string();
    EXPECT_NE(std::find(names.begin(), names.end(), base), names.end());
    EXPECT_EQ(std::count(names.begin(), names.end(), ""), 0);
}

TEST(PosixProcesses, PathsOutsideTheRootComeBackEmpty) {
    PosixProcesses processes(PathMap("/nonexistent-root"));
    auto list = processes.listWithPaths();
    auto self = std::find_if(list.begin(), list.end(), [](auto& p) {
        return p.pid == static_cast<std::uint32_t>(::getpid());
    });
    ASSERT_NE(self, list.end());
    EXPECT_EQ(self->imagePath, "");
}

TEST(PosixProcesses, StartedChildIsListedTerminatedAndLeavesNoZombie) {
    PosixProcesses processes;
    // An unusual duration finds our child among any other sleeps.
    std::string seconds = std::to_string(3000 + ::getpid() % 1000) + ".5";
    ASSERT_TRUE(processes.start("C:\\bin\\sleep", seconds, true));
    std::uint32_t child =
        WaitForCommandLine("/bin/sleep" + std::string(1, '\0') + seconds + std::string(1, '\0'));
    ASSERT_NE(child, 0u);
    EXPECT_EQ(ProcFile(child, "status").find("PPid:\t" + std::to_string(::getpid()) + "\n"),
              std::string::npos)
        << "the child must not be ours to reap";

    auto list = processes.listWithPaths();
    auto found = std::find_if(list.begin(), list.end(), [&](auto& p) { return p.pid == child; });
    ASSERT_NE(found, list.end());
    auto sleepExe = std::filesystem::canonical("/bin/sleep").string();
    EXPECT_EQ(found->imagePath, EnginePathFromNative(sleepExe));

    EXPECT_TRUE(processes.terminate(child));
    bool gone = false;
    for (int i = 0; i < 500 && !gone; ++i) {
        gone = GoneFromUs(child);
        if (!gone) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(gone);
}

// Terminate refuses 0 and -1, which would signal our whole group or every process we may.
TEST(PosixProcesses, MissingProgramsDoNotStartAndGroupOrBroadcastIdsAreNotEnded) {
    PosixProcesses processes;
    EXPECT_FALSE(processes.start("C:\\no\\such\\program", "", true));
    EXPECT_FALSE(processes.start("D:\\elsewhere.exe", "", true));
    EXPECT_FALSE(processes.terminate(0));
    EXPECT_FALSE(processes.terminate(UINT32_MAX));
    EXPECT_FALSE(processes.terminate(static_cast<std::uint32_t>(INT_MAX) + 1u));
}

TEST(SplitArguments, FollowsTheWindowsQuotingRules) {
    using V = std::vector<std::string>;
    EXPECT_EQ(SplitArguments(""), V{});
    EXPECT_EQ(SplitArguments("  a  b\tc "), (V{"a", "b", "c"}));
    EXPECT_EQ(SplitArguments(R"("C:\Program Files\x.exe" /scan)"),
              (V{R"(C:\Program Files\x.exe)", "/scan"}));
    EXPECT_EQ(SplitArguments(R"(a\\b a\"b a\\"b c" d)"), (V{R"(a\\b)", R"(a"b)", R"(a\b c)", "d"}));
    EXPECT_EQ(SplitArguments(R"("")"), V{""});
    EXPECT_EQ(SplitArguments(R"(trail\)"), V{R"(trail\)"});
}

}  // namespace
}  // namespace orvex::platform
