// MemorySystem_test.cpp: the scripting of the memory system and processes: the clock,
// identity, mutexes shared between simulated processes, recorded shell, window and process
// calls.
#include <gtest/gtest.h>

#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform::memory {
namespace {

TEST(MemorySystem, TheTickCountStepsAndWrapsAndCallsAreRecorded) {
    MemoryFileSystem files;
    MemorySystem sys{files};
    sys.setTickCount(0xFFFFFFFFu);
    sys.setTickStep(2);
    EXPECT_EQ(sys.tickCount(), 0xFFFFFFFFu);
    EXPECT_EQ(sys.tickCount(), 1u);  // wraps like GetTickCount after 49.7 days
    sys.setTickStep(0);
    sys.advanceTicks(1000);
    EXPECT_EQ(sys.tickCount(), 1003u);
    EXPECT_EQ(sys.tickCount(), 1003u);
    sys.setShellExecuteResult(false);
    EXPECT_FALSE(sys.shellExecute("Open", "C:\\ovshelp.chm", "", 1));
    ASSERT_EQ(sys.shellCalls().size(), 1u);
    EXPECT_EQ(sys.shellCalls()[0].verb + sys.shellCalls()[0].file, "OpenC:\\ovshelp.chm");
    const auto w = sys.addWindow("Orvex Sentry", 4000);
    EXPECT_EQ(sys.topLevelWindows().at(0).title, "Orvex Sentry");
    EXPECT_TRUE(sys.postClose(w));
    EXPECT_FALSE(sys.postClose(w + 1));
    EXPECT_EQ(sys.closeRequests(), std::vector<std::uintptr_t>{w});
}

TEST(MemorySystem, ASecondProcessSeesTheFirstOnesMutexUntilItIsClosed) {
    MemoryFileSystem files;
    auto table = std::make_shared<MutexTable>();
    MemorySystem first(files, table), second(files, table);
    const auto mine = first.createMutex("OrvexSentry", true);
    const auto theirs = second.createMutex("OrvexSentry", true);
    EXPECT_TRUE(theirs.alreadyExisted);
    EXPECT_FALSE(second.releaseMutex(theirs.handle));  // ownership was not granted
    EXPECT_TRUE(first.releaseMutex(mine.handle));
    first.closeHandle(mine.handle);
    EXPECT_FALSE(first.holdsMutex("OrvexSentry"));
    EXPECT_NE(second.openMutex("OrvexSentry"), 0u);  // the second still holds a handle
}

TEST(MemoryProcesses, TerminateRemovesTheProcessUnlessItIsProtected) {
    MemoryProcesses procs;
    const auto a = procs.addProcess("C:\\WINDOWS\\explorer.exe");
    const auto b = procs.addProcess("C:\\bad\\spy.exe");
    EXPECT_EQ(procs.listImageNames(), (std::vector<std::string>{"explorer.exe", "spy.exe"}));
    procs.protect(a);
    EXPECT_FALSE(procs.terminate(a));
    EXPECT_TRUE(procs.terminate(b));
    EXPECT_FALSE(procs.terminate(b));
    EXPECT_TRUE(procs.running(a) && !procs.running(b));
    EXPECT_EQ(procs.terminated(), std::vector<std::uint32_t>{b});
    ASSERT_EQ(procs.listWithPaths().size(), 1u);
    EXPECT_EQ(procs.listWithPaths()[0].imagePath, "C:\\WINDOWS\\explorer.exe");
}

}  // namespace
}  // namespace orvex::platform::memory
