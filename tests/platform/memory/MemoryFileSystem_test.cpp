// MemoryFileSystem_test.cpp: what only the memory file system does: its scripting (drives,
// locks, write faults), sorted listings, its 8.3 names and the spelling a replace leaves.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/memory/MemoryPlatform.h"
#include "support/FailureOf.h"

namespace orvex::platform::memory {
namespace {

using orvex::testing::FailureOf;
using ::testing::ElementsAre;

class MemoryFileSystemTest : public ::testing::Test {
  protected:
    MemoryFileSystemTest() { fs.addDrive("C:\\"); }

    MemoryFileSystem fs;
};

TEST_F(MemoryFileSystemTest, PathsTakeEitherSlashButNeedADriveAndTheRootStays) {
    fs.addFile("C:\\Program Files\\App\\Tool.EXE", "MZ");
    fs.addFolder("C:\\d");
    EXPECT_TRUE(fs.folderExists("C:/program files/"));
    EXPECT_EQ(fs.longPath("c:\\program files\\APP\\tool.exe"), "c:\\Program Files\\App\\Tool.EXE");
    EXPECT_FALSE(fs.fileExists("Program Files\\App\\Tool.EXE"));
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\a\\b|.txt", OpenMode::Write); }), 52);
    fs.remove("C:\\d");
    EXPECT_FALSE(fs.folderExists("C:\\d"));
    EXPECT_EQ(FailureOf([&] { fs.remove("C:\\"); }), 75);
}

TEST_F(MemoryFileSystemTest, StreamsOutliveTheirFileAndFailFarSeeksAndArmedWrites) {
    fs.addFile("C:\\gone.txt", "abc");
    auto gone = fs.open("C:\\gone.txt", OpenMode::Read);
    fs.remove("C:\\gone.txt");
    char buffer[3];
    EXPECT_EQ(gone->read(buffer, 3), 3u);
    auto far = fs.open("C:\\gap.bin", OpenMode::Write);
    far->seek(1ull << 40);  // fails instead of allocating
    EXPECT_THROW(far->write("z", 1), Failure);
    const auto before = fs.writeCount();
    fs.failWrite(2, failure::kDiskFull);
    auto s = fs.open("C:\\store.tmp", OpenMode::Write);
    s->write("one,", 4);
    EXPECT_EQ(FailureOf([&] { s->write("two,", 4); }), failure::kDiskFull);
    s->write("three", 5);  // fails only once
    EXPECT_EQ(fs.contents("C:\\store.tmp"), "one,three");
    EXPECT_EQ(fs.writeCount(), before + 3);
}

TEST_F(MemoryFileSystemTest, ReplaceTakesTheNewSpellingAndRefusesALockedTarget) {
    fs.addFile("C:\\data\\store.dat", "old");
    fs.addFile("C:\\data\\store.tmp", "new");
    fs.replace("C:\\data\\store.tmp", "C:\\data\\Store.dat");
    EXPECT_EQ(fs.longPath("C:\\data\\store.dat"), "C:\\data\\Store.dat");
    fs.addFile("C:\\data\\again.tmp", "newer");
    fs.lock("C:\\data\\store.dat");
    EXPECT_EQ(FailureOf([&] { fs.replace("C:\\data\\again.tmp", "C:\\data\\store.dat"); }), 70);
    EXPECT_EQ(fs.contents("C:\\data\\store.dat"), "new");
    EXPECT_EQ(FailureOf([&] { fs.replace("C:\\data", "C:\\data\\inner"); }), 75);
}

TEST_F(MemoryFileSystemTest, ShortNamesAreNumberedPerFolderAndListsAreSorted) {
    fs.addFile("C:\\Program Files\\Orvex Sentry\\Backup.Dat", "b");
    fs.addFolder("C:\\Program Data");
    fs.addFolder("C:\\WINDOWS");
    EXPECT_EQ(fs.shortPath("C:\\Program Files\\Orvex Sentry\\Backup.Dat"),
              "C:\\PROGRA~1\\ORVEXS~1\\Backup.Dat");
    EXPECT_EQ(fs.shortPath("C:\\program data\\"), "C:\\PROGRA~2\\");
    EXPECT_EQ(fs.shortPath("C:\\windows"), "C:\\WINDOWS");
    EXPECT_EQ(fs.contents("C:\\progra~1\\orvexs~1\\backup.dat"), "b");
    fs.addFile("C:\\d\\zeta.txt", "12345");
    fs.addFile("C:\\d\\Alpha long name.txt", "", attr::kHidden);
    fs.addFolder("C:\\d\\mid");
    const auto entries = fs.list("C:\\d");
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].shortName, "ALPHAL~1.TXT");
    EXPECT_EQ(entries[0].attributes, attr::kHidden);
    EXPECT_EQ(entries[1].name, "mid");
    EXPECT_EQ(entries[2].attributes, attr::kArchive);
    EXPECT_THAT(fs.filesBelow("C:\\D"),
                ElementsAre("C:\\d\\Alpha long name.txt", "C:\\d\\zeta.txt"));
}

TEST_F(MemoryFileSystemTest, DrivesAreScriptedWithTypesSpaceAndReadiness) {
    fs.addDrive("E:\\", drivetype::kCdRom);
    fs.addDrive("D", drivetype::kRemote, 1234);
    EXPECT_THAT(fs.drives(), ElementsAre("C:\\", "D:\\", "E:\\"));
    EXPECT_EQ(fs.driveType("E:"), drivetype::kCdRom);
    EXPECT_EQ(fs.freeSpace("D:\\"), 1234u);
    fs.setDriveReady("E:\\", false);
    EXPECT_FALSE(fs.folderExists("E:\\"));
    EXPECT_EQ(FailureOf([&] { fs.list("E:\\"); }), 71);
}

}  // namespace
}  // namespace orvex::platform::memory
