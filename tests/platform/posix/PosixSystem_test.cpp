// PosixSystem_test.cpp: named mutexes as lock files, across processes.
#include "platform/posix/PosixSystem.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

namespace orvex::platform {
namespace {

class PosixSystemTest : public ::testing::Test {
  protected:
    ~PosixSystemTest() override {
        for (const auto& name : names_)
            ::unlink(MutexLockPath(name).c_str());
    }
    // A name of this run only, so that parallel runs do not meet.
    std::string uniqueName(const std::string& stem) {
        names_.push_back("Global\\" + stem + "_" + std::to_string(::getpid()));
        return names_.back();
    }

    PosixFiles files;
    PosixSystem system{files};

  private:
    std::vector<std::string> names_;
};

// Another process holding a mutex until told to let go.
class MutexHolder {
  public:
    explicit MutexHolder(const std::string& name) {
        if (::pipe(ready_) != 0 || ::pipe(done_) != 0) return;
        pid_ = ::fork();
        if (pid_ == 0) {
            ::close(ready_[0]);
            ::close(done_[1]);  // else the read below never sees the end
            PosixFiles files;
            PosixSystem system(files);
            MutexResult held = system.createMutex(name, true);
            char byte = held.handle != 0 && !held.alreadyExisted ? 'y' : 'n';
            (void)!::write(ready_[1], &byte, 1);
            (void)!::read(done_[0], &byte, 1);  // until the parent closes its end
            ::_exit(0);
        }
        char byte = 'n';
        ::close(ready_[1]);
        ::close(done_[0]);
        holding_ = ::read(ready_[0], &byte, 1) == 1 && byte == 'y';
    }
    ~MutexHolder() { stop(); }
    void stop() {
        if (pid_ <= 0) return;
        ::close(done_[1]);
        ::close(ready_[0]);
        ::waitpid(pid_, nullptr, 0);
        pid_ = 0;
    }
    bool holding() const { return holding_; }

  private:
    int ready_[2] = {-1, -1};
    int done_[2] = {-1, -1};
    pid_t pid_ = -1;
    bool holding_ = false;
};

TEST_F(PosixSystemTest, MutexHeldByAnotherProcessIsSeenUntilItEnds) {
    std::string name = uniqueName("_Orvex_IPTunnelMutex");
    EXPECT_EQ(system.openMutex(name), 0u);
    MutexHolder holder(name);
    ASSERT_TRUE(holder.holding());

    MutexResult mine = system.createMutex(name, true);
    EXPECT_NE(mine.handle, 0u);
    EXPECT_TRUE(mine.alreadyExisted);
    EXPECT_FALSE(system.releaseMutex(mine.handle));  // never owned
    MutexHandle opened = system.openMutex(name);
    EXPECT_NE(opened, 0u);
    system.closeHandle(opened);
    system.closeHandle(mine.handle);

    holder.stop();
    EXPECT_EQ(system.openMutex(name), 0u);
    MutexResult again = system.createMutex(name, true);
    EXPECT_FALSE(again.alreadyExisted);
    system.closeHandle(again.handle);
}

TEST_F(PosixSystemTest, AReleasedMutexIsGoneThoughHandlesRemain) {
    std::string name = uniqueName("_Orvex_Sentry");
    PosixSystem other(files);
    MutexResult first = system.createMutex(name, true);
    ASSERT_NE(first.handle, 0u);
    EXPECT_FALSE(first.alreadyExisted);
    MutexResult second = other.createMutex(name, true);
    EXPECT_TRUE(second.alreadyExisted);
    other.closeHandle(second.handle);

    EXPECT_TRUE(system.releaseMutex(first.handle));
    EXPECT_EQ(other.openMutex(name), 0u);  // unowned, it is gone for everyone
    system.closeHandle(first.handle);
    system.closeHandle(first.handle);  // twice is harmless
}

TEST_F(PosixSystemTest, MutexNamesMapToDistinctSafeFileNames) {
    std::string a = MutexLockPath("Global\\_Orvex_Sentry");
    std::string b = MutexLockPath("Global__Orvex_Sentry");
    std::string c = MutexLockPath("../../etc/passwd");
    EXPECT_NE(a, b);
    EXPECT_EQ(std::filesystem::path(c).parent_path(), std::filesystem::path(a).parent_path());
    std::string longName = MutexLockPath(std::string(300, '\\'));
    std::string longOther = MutexLockPath(std::string(299, '\\') + "/");
    EXPECT_LE(std::filesystem::path(longName).filename().string().size(), 255u);
    EXPECT_NE(longName, longOther);
}

}  // namespace
}  // namespace orvex::platform
