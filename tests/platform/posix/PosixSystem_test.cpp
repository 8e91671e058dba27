// PosixSystem_test.cpp: clock, texts, identity and named mutexes across processes.
#include "platform/posix/PosixSystem.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <thread>

#include "platform/posix/PosixTestFolder.h"

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

TEST_F(PosixSystemTest, ReleaseAndCloseLetTheNextCreatorOwnIt) {
    std::string name = uniqueName("_Orvex_Sentry");
    PosixSystem other(files);
    MutexResult first = system.createMutex(name, true);
    ASSERT_NE(first.handle, 0u);
    EXPECT_FALSE(first.alreadyExisted);
    MutexResult second = other.createMutex(name, true);
    EXPECT_TRUE(second.alreadyExisted);
    other.closeHandle(second.handle);

    EXPECT_TRUE(system.releaseMutex(first.handle));
    EXPECT_FALSE(system.releaseMutex(first.handle));
    EXPECT_EQ(other.openMutex(name), 0u);
    MutexResult third = other.createMutex(name, true);
    EXPECT_FALSE(third.alreadyExisted);
    other.closeHandle(third.handle);
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

TEST_F(PosixSystemTest, DatesAndTimesInTheUsForms) {
    EXPECT_EQ(system.shortDateText({2026, 11, 22, 19, 14, 5}), "11/22/2026");
    EXPECT_EQ(system.longTimeText({2026, 11, 22, 19, 14, 5}), "7:14:05 PM");
    EXPECT_EQ(system.shortDateText({2027, 1, 5, 0, 0, 0}), "1/5/2027");
    EXPECT_EQ(system.longTimeText({2027, 1, 5, 0, 3, 9}), "12:03:09 AM");
    EXPECT_EQ(system.longTimeText({2027, 1, 5, 12, 0, 0}), "12:00:00 PM");
    LocalTime now = system.now();
    EXPECT_GE(now.year, 2024);
    EXPECT_TRUE(now.month >= 1 && now.month <= 12);
}

TEST_F(PosixSystemTest, TickCountAdvancesInMilliseconds) {
    std::uint32_t before = system.tickCount();
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    std::uint32_t elapsed = system.tickCount() - before;  // wraps like GetTickCount
    EXPECT_GE(elapsed, 45u);
    EXPECT_LT(elapsed, 5000u);
}

TEST_F(PosixSystemTest, IdentityFoldersAndEnvironment) {
    EXPECT_TRUE(system.computerName().has_value());
    EXPECT_TRUE(system.userName().has_value());
    EXPECT_EQ(system.windowsFolder(), "C:\\Windows");
    EXPECT_EQ(system.systemFolder(), "C:\\Windows\\System32");
    EXPECT_EQ(system.executablePath(),
              EnginePathFromNative(std::filesystem::read_symlink("/proc/self/exe").string()));
    ::setenv("ORVEX_TEST_VARIABLE", "value 1", 1);
    EXPECT_EQ(system.environment("ORVEX_TEST_VARIABLE"), "value 1");
    ::unsetenv("ORVEX_TEST_VARIABLE");
    EXPECT_EQ(system.environment("ORVEX_TEST_VARIABLE"), std::nullopt);
    EXPECT_EQ(system.environment(""), std::nullopt);
}

// The language choice lives in an INI file beside the program: the profile calls must work
// on real files through the path mapping.
TEST(PosixSystemProfile, WritesAndReadsAnIniFileOnDisk) {
    orvex::testing::PosixTestFolder folder;
    PosixFiles rooted(folder.path());
    PosixSystem system(rooted);
    const std::string ini = "C:\\LangSetting.ini";
    EXPECT_EQ(system.readProfileString("Language", "File", "English.lng", 260, ini), "English.lng");
    ASSERT_TRUE(system.writeProfileString("Language", "File", "Deutsch.lng", ini));
    ASSERT_TRUE(system.writeProfileString("Other", "Key", "1", ini));
    EXPECT_EQ(system.readProfileString("language", "FILE", "", 260, ini), "Deutsch.lng");
    EXPECT_EQ(system.readProfileString("Language", "File", "", 4, ini), "Deu");
    EXPECT_NE(folder.read("LangSetting.ini").find("[Other]"), std::string::npos);
    EXPECT_FALSE(system.writeProfileString("Language", "File", "x", "C:\\missing\\a.ini"));
}

}  // namespace
}  // namespace orvex::platform
