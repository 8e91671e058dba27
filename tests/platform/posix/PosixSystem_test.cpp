// PosixSystem_test.cpp: named mutexes as lock files, across processes.
#include "platform/posix/PosixSystem.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include <filesystem>

namespace orvex::platform {
namespace {

class PosixSystemTest : public ::testing::Test {
  protected:
    ~PosixSystemTest() override { ::unlink(MutexLockPath(name).c_str()); }

    PosixFiles files;
    PosixSystem system{files};
    const std::string name = "Global\\_Orvex_Sentry_" + std::to_string(::getpid());
};

TEST_F(PosixSystemTest, MutexHeldByAnotherProcessIsSeenUntilItEnds) {
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
    const bool holding = ::read(ready[0], &byte, 1) == 1 && byte == 'y';
    ::close(ready[0]);
    ::close(ready[1]);
    EXPECT_TRUE(holding);
    const MutexResult mine = system.createMutex(name, true);
    EXPECT_TRUE(mine.handle != 0 && mine.alreadyExisted);
    EXPECT_FALSE(system.releaseMutex(mine.handle));  // never owned
    EXPECT_NE(system.openMutex(name), 0u);
    system.closeHandle(mine.handle);
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_EQ(system.openMutex(name), 0u);
}

TEST_F(PosixSystemTest, AReleasedMutexIsGoneThoughHandlesRemain) {
    PosixSystem other(files);
    const MutexResult first = system.createMutex(name, true);
    ASSERT_TRUE(first.handle != 0 && !first.alreadyExisted);
    const MutexResult second = other.createMutex(name, true);
    EXPECT_TRUE(second.alreadyExisted);
    other.closeHandle(second.handle);
    EXPECT_TRUE(system.releaseMutex(first.handle));
    EXPECT_EQ(other.openMutex(name), 0u);  // unowned, it is gone for everyone
    system.closeHandle(first.handle);
    system.closeHandle(first.handle);  // twice is harmless
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
