// PosixProcesses_test.cpp: what only the POSIX process back-end does: the version it claims,
// pid order, paths outside its root and the Windows quoting of arguments.
#include "platform/posix/PosixProcesses.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>

namespace orvex::platform {
namespace {

TEST(PosixProcesses, ReportsXpListsByPidAndLeavesPathsOutsideTheRootEmpty) {
    PosixProcesses processes(PathMap("/nonexistent-root"));
    const auto v = processes.osVersion();
    EXPECT_TRUE(v && v->major == 5 && v->minor == 1);  // so the engine takes its NT paths
    EXPECT_EQ(processes.currentProcessId(), static_cast<std::uint32_t>(::getpid()));
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

}  // namespace
}  // namespace orvex::platform
