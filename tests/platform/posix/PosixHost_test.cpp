// PosixHost_test.cpp: what only the POSIX back-end does: the version it claims, pid order,
// paths outside its root, the Windows quoting of arguments, named mutexes as lock files across
// processes.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <filesystem>

#include "platform/posix/PosixProcesses.h"
#include "platform/posix/PosixSystem.h"

namespace orvex::platform {
namespace {

TEST(PosixProcesses, ReportsXpListsByPidAndLeavesPathsOutsideTheRootEmpty) {
    PosixProcesses processes(PathMap("/nonexistent-root"));
    const auto v = processes.osVersion();
    EXPECT_TRUE(v && v->major == 5 && v->minor == 1);  // so the engine takes its NT paths
    const auto list = processes.listWithPaths();
    EXPECT_TRUE(
        std::is_sorted(list.begin(), list.end(), [](auto& a, auto& b) { return a.pid < b.pid; }));
    const auto self = std::find_if(list.begin(), list.end(),
                                   [&](auto& p) { return p.pid == processes.currentProcessId(); });
    ASSERT_NE(self, list.end());
    EXPECT_EQ(self->imagePath, "");
}

TEST(SplitArguments, FollowsTheWindowsQuotingRules) {
    using V = std::vector<std::string>;
    EXPECT_EQ(SplitArguments(""), V{});
    EXPECT_EQ(SplitArguments("  a  b\tc "), (V{"a", "b", "c"}));
    EXPECT_EQ(SplitArguments(R"("C:\Program Files\x.exe" /scan)"),
              (V{R"(C:\Program Files\x.exe)", "/scan"}));
    EXPECT_EQ(SplitArguments(R"(a\\b a\"b a\\"b c" d)"), (V{R"(a\\b)", R"(a"b)", R"(a\b c)", "d"}));
    EXPECT_EQ(SplitArguments(R"("" trail\)"), (V{"", R"(trail\)"}));
}

// Lock files: a mutex exists while a process owns it, and goes with that process.
TEST(PosixMutexes, AreSeenWhileOwnedHereOrByAnotherProcess) {
    PosixFiles files;
    PosixSystem system{files}, other{files};
    const std::string name = "Global\\_Orvex_Sentry_" + std::to_string(::getpid());
    EXPECT_EQ(system.openMutex(name), 0u);
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t holder = ::fork();
    if (holder == 0) {
        const MutexResult held = system.createMutex(name, true);
        const char byte = held.handle != 0 && !held.alreadyExisted ? 'y' : 'n';
        (void)!::write(ready[1], &byte, 1);
        ::pause();  // until killed
    }
    ASSERT_GT(holder, 0);
    char byte = 'n';
    EXPECT_TRUE(::read(ready[0], &byte, 1) == 1 && byte == 'y');
    ::close(ready[0]);
    ::close(ready[1]);
    const MutexResult mine = system.createMutex(name, true);
    EXPECT_TRUE(mine.handle != 0 && mine.alreadyExisted);
    EXPECT_FALSE(system.releaseMutex(mine.handle));  // never owned
    system.closeHandle(mine.handle);
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_EQ(system.openMutex(name), 0u);
    const MutexResult first = system.createMutex(name, true);
    EXPECT_FALSE(first.alreadyExisted);
    EXPECT_TRUE(system.releaseMutex(first.handle));
    EXPECT_EQ(other.openMutex(name), 0u);  // unowned, it is gone though handles remain
    system.closeHandle(first.handle);
    system.closeHandle(first.handle);  // twice is harmless
    ::unlink(MutexLockPath(name).c_str());
}

TEST(PosixMutexNames, MapToDistinctSafeFileNames) {
    const std::filesystem::path a = MutexLockPath("Global\\_Orvex_Sentry");
    EXPECT_NE(a, MutexLockPath("Global__Orvex_Sentry"));
    EXPECT_EQ(std::filesystem::path(MutexLockPath("../../etc/passwd")).parent_path(),
              a.parent_path());
    const std::string longName = MutexLockPath(std::string(300, '\\'));
    EXPECT_LE(std::filesystem::path(longName).filename().string().size(), 255u);
    EXPECT_NE(longName, MutexLockPath(std::string(299, '\\') + "/"));
}

}  // namespace
}  // namespace orvex::platform
