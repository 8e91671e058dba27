// MemorySystem_test.cpp: the scripting of the memory system and processes: the clock,
// identity, mutexes shared between simulated processes, recorded shell, window and process
// calls.
#include <gtest/gtest.h>

#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform::memory {
namespace {

class MemorySystemTest : public ::testing::Test {
  protected:
    MemoryFileSystem files;
    MemorySystem sys{files};
};

TEST_F(MemorySystemTest, TheTickCountAdvancesByItsStep) {
    sys.setTickCount(500);
    EXPECT_EQ(sys.tickCount(), 500u);
    EXPECT_EQ(sys.tickCount(), 501u);
    sys.setTickStep(0);
    sys.advanceTicks(1000);
    EXPECT_EQ(sys.tickCount(), 1502u);
    EXPECT_EQ(sys.tickCount(), 1502u);
    sys.setTickCount(0xFFFFFFFFu);
    sys.setTickStep(2);
    sys.tickCount();
    EXPECT_EQ(sys.tickCount(), 1u);  // wraps like GetTickCount after 49.7 days
    sys.setComputerName(std::nullopt);
    EXPECT_EQ(sys.computerName(), std::nullopt);
}

TEST_F(MemorySystemTest, ASecondProcessSeesTheFirstOnesMutexUntilItIsClosed) {
    auto table = std::make_shared<MutexTable>();
    MemorySystem first(files, table), second(files, table);
    const auto mine = first.createMutex("OrvexSentry", true);
    const auto theirs = second.createMutex("OrvexSentry", true);
    EXPECT_TRUE(theirs.alreadyExisted);
    EXPECT_NE(mine.handle, theirs.handle);
    EXPECT_FALSE(second.releaseMutex(theirs.handle));  // ownership was not granted
    EXPECT_TRUE(first.releaseMutex(mine.handle));
    first.closeHandle(mine.handle);
    EXPECT_FALSE(first.holdsMutex("OrvexSentry"));
    EXPECT_NE(second.openMutex("OrvexSentry"), 0u);  // the second still holds a handle
    second.closeHandle(theirs.handle);
    EXPECT_TRUE(table->exists("OrvexSentry"));
}

TEST_F(MemorySystemTest, ShellAndWindowCallsAreRecorded) {
    sys.setShellExecuteResult(false);
    EXPECT_FALSE(sys.shellExecute("Open", "C:\\ovshelp.chm", "", 1));
    ASSERT_EQ(sys.shellCalls().size(), 1u);
    EXPECT_EQ(sys.shellCalls()[0].verb, "Open");
    EXPECT_EQ(sys.shellCalls()[0].file, "C:\\ovshelp.chm");

    const auto w = sys.addWindow("Orvex Sentry", 4000);
    EXPECT_EQ(sys.topLevelWindows().at(0).title, "Orvex Sentry");
    EXPECT_TRUE(sys.postClose(w));
    EXPECT_FALSE(sys.postClose(w + 1));
    EXPECT_EQ(sys.closeRequests(), std::vector<std::uintptr_t>{w});
}

TEST(MemoryProcesses, TerminateRemovesTheProcessUnlessItIsProtected) {
    MemoryProcesses procs;
    const auto a = procs.addProcess("C:\\WINDOWS\\explorer.exe");
    const auto b = procs.addProcess("C:\\bad\\spy.exe");
    EXPECT_NE(a, b);
    EXPECT_EQ(procs.listImageNames(), (std::vector<std::string>{"explorer.exe", "spy.exe"}));
    procs.protect(a);
    EXPECT_FALSE(procs.terminate(a));
    EXPECT_TRUE(procs.terminate(b));
    EXPECT_FALSE(procs.terminate(b));
    EXPECT_TRUE(procs.running(a));
    EXPECT_FALSE(procs.running(b));
    EXPECT_EQ(procs.terminated(), std::vector<std::uint32_t>{b});
    ASSERT_EQ(procs.listWithPaths().size(), 1u);
    EXPECT_EQ(procs.listWithPaths()[0].imagePath, "C:\\WINDOWS\\explorer.exe");
}

}  // namespace
}  // namespace orvex::platform::memory
