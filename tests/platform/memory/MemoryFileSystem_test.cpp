// MemoryFileSystem_test.cpp: the in-memory file system keeps Windows's path rules, stream
// modes and failure numbers.
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

    std::string readAll(std::string_view path) {
        auto s = fs.open(path, OpenMode::Read);
        std::string out(s->size(), '\0');
        out.resize(s->read(out.data(), out.size()));
        return out;
    }
    void write(std::string_view path, OpenMode mode, std::string_view bytes) {
        fs.open(path, mode)->write(bytes.data(), bytes.size());
    }

    MemoryFileSystem fs;
};

TEST_F(MemoryFileSystemTest, NamesIgnoreCaseAndKeepTheirSpelling) {
    fs.addFile("C:\\Program Files\\App\\Tool.EXE", "MZ");
    EXPECT_TRUE(fs.fileExists("c:\\PROGRAM FILES\\app\\tool.exe"));
    EXPECT_TRUE(fs.folderExists("C:/program files/"));
    EXPECT_FALSE(fs.folderExists("C:\\Program Files\\App\\Tool.EXE"));
    EXPECT_FALSE(fs.fileExists("C:\\Program Files\\App\\Tool.EXE\\"));
    EXPECT_EQ(fs.longPath("c:\\program files\\APP\\tool.exe"), "c:\\Program Files\\App\\Tool.EXE");
}

TEST_F(MemoryFileSystemTest, PathsAreNormalisedAsWin32Does) {
    fs.addFile("C:\\a\\b.txt", "x");
    EXPECT_TRUE(fs.fileExists("C:\\a\\.\\c\\..\\b.txt"));
    EXPECT_TRUE(fs.fileExists("C:\\a\\\\b.txt."));
    EXPECT_FALSE(fs.fileExists("C:\\a\\b?.txt"));
    EXPECT_FALSE(fs.fileExists("a\\b.txt"));
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\a\\b|.txt", OpenMode::Write); }), 52);
}

TEST_F(MemoryFileSystemTest, WriteTruncatesAndReadWriteDoesNot) {
    fs.addFile("C:\\f.txt", "0123456789");
    write("C:\\f.txt", OpenMode::ReadWrite, "ab");
    EXPECT_EQ(fs.contents("C:\\f.txt"), "ab23456789");
    write("C:\\f.txt", OpenMode::Write, "xy");
    EXPECT_EQ(fs.contents("C:\\f.txt"), "xy");
    write("C:\\new.bin", OpenMode::ReadWrite, "n");
    EXPECT_EQ(fs.contents("C:\\new.bin"), "n");
}

TEST_F(MemoryFileSystemTest, AppendStartsAtTheEndAndASeekOverwritesTheStart) {
    fs.addFile("C:\\log.txt", "old-entry\r\n");
    auto s = fs.open("C:\\log.txt", OpenMode::Append);
    EXPECT_EQ(s->position(), 11u);
    s->write("A", 1);
    s->seek(0);
    s->write("NEW", 3);
    EXPECT_EQ(fs.contents("C:\\log.txt"), "NEW-entry\r\nA");
    write("C:\\created.txt", OpenMode::Append, "x");
    EXPECT_TRUE(fs.fileExists("C:\\created.txt"));
}

TEST_F(MemoryFileSystemTest, SeekPastTheEndFillsTheGapWithZeros) {
    auto s = fs.open("C:\\gap.bin", OpenMode::Write);
    s->seek(3);
    s->write("z", 1);
    EXPECT_EQ(fs.contents("C:\\gap.bin"), std::string("\0\0\0z", 4));
    s->seek(1ull << 40);
    EXPECT_THROW(s->write("z", 1), Failure);  // no terabyte allocation
}

TEST_F(MemoryFileSystemTest, StreamsKeepToTheirMode) {
    fs.addFile("C:\\f.txt", "abc");
    char c;
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\f.txt", OpenMode::Read)->write("x", 1); }), 54);
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\f.txt", OpenMode::Append)->read(&c, 1); }), 54);
    auto rw = fs.open("C:\\f.txt", OpenMode::ReadWrite);
    EXPECT_EQ(rw->read(&c, 1), 1u);
    rw->seek(10);
    EXPECT_EQ(rw->read(&c, 1), 0u);
}

TEST_F(MemoryFileSystemTest, MissingThingsGiveTheirClassicNumbers) {
    fs.addFolder("C:\\dir");
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\dir\\none.txt", OpenMode::Read); }), 53);
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\nodir\\x.txt", OpenMode::Write); }), 76);
    EXPECT_EQ(FailureOf([&] { fs.open("Q:\\x.txt", OpenMode::Read); }), 76);
    EXPECT_EQ(FailureOf([&] { fs.length("C:\\dir\\none.txt"); }), 53);
    EXPECT_EQ(FailureOf([&] { fs.list("C:\\nodir"); }), 76);
    EXPECT_EQ(FailureOf([&] { fs.remove("C:\\dir\\none.txt"); }), 53);
    EXPECT_EQ(FailureOf([&] { fs.createFolder("C:\\a\\b"); }), 76);
    EXPECT_EQ(FailureOf([&] { fs.createFolder("C:\\dir"); }), 75);
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\dir", OpenMode::Read); }), 75);
}

TEST_F(MemoryFileSystemTest, LockedFilesRefuseWithSeventy) {
    fs.addFile("C:\\busy.dll", "code");
    fs.lock("C:\\busy.dll");
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\busy.dll", OpenMode::Read); }), 70);
    EXPECT_EQ(FailureOf([&] { fs.remove("C:\\busy.dll"); }), 70);
    EXPECT_EQ(FailureOf([&] { fs.copy("C:\\busy.dll", "C:\\copy.dll", true); }), 70);
    EXPECT_EQ(FailureOf([&] { fs.replace("C:\\busy.dll", "C:\\moved.dll"); }), 70);
    EXPECT_TRUE(fs.fileExists("C:\\busy.dll"));
    EXPECT_EQ(fs.length("C:\\busy.dll"), 4u);  // reading the size is allowed
    fs.lock("C:\\busy.dll", false);
    fs.remove("C:\\busy.dll");
    EXPECT_FALSE(fs.fileExists("C:\\busy.dll"));
}

TEST_F(MemoryFileSystemTest, ReadOnlyFilesResistWritesAndDeletesWithSeventyFive) {
    fs.addFile("C:\\ro.txt", "keep", attr::kReadOnly);
    EXPECT_EQ(FailureOf([&] { fs.remove("C:\\ro.txt"); }), 75);
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\ro.txt", OpenMode::Write); }), 75);
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\ro.txt", OpenMode::ReadWrite); }), 75);
    EXPECT_EQ(readAll("C:\\ro.txt"), "keep");
    fs.setAttributes("C:\\ro.txt", attr::kNormal);
    EXPECT_EQ(fs.attributes("C:\\ro.txt"), attr::kNormal);
    fs.remove("C:\\ro.txt");
    EXPECT_FALSE(fs.fileExists("C:\\ro.txt"));
}

TEST_F(MemoryFileSystemTest, FoldersAreRemovedOnlyWhenEmpty) {
    fs.addFile("C:\\d\\f.txt");
    EXPECT_EQ(FailureOf([&] { fs.remove("C:\\d"); }), 75);
    fs.remove("C:\\d\\f.txt");
    fs.remove("C:\\d");
    EXPECT_FALSE(fs.folderExists("C:\\d"));
    EXPECT_EQ(FailureOf([&] { fs.remove("C:\\"); }), 75);
}

TEST_F(MemoryFileSystemTest, CopyKeepsBytesAndAttributesAndHonoursOverwrite) {
    fs.addFile("C:\\src.txt", "data", attr::kReadOnly | attr::kHidden);
    fs.addFolder("C:\\out");
    fs.copy("C:\\src.txt", "C:\\out\\dst.txt", false);
    EXPECT_EQ(fs.contents("C:\\out\\dst.txt"), "data");
    EXPECT_EQ(fs.attributes("C:\\out\\dst.txt"), attr::kReadOnly | attr::kHidden);
    fs.addFile("C:\\other.txt", "x");
    EXPECT_EQ(FailureOf([&] { fs.copy("C:\\src.txt", "C:\\other.txt", false); }), 58);
    EXPECT_EQ(FailureOf([&] { fs.copy("C:\\other.txt", "C:\\out\\dst.txt", true); }), 75);
    EXPECT_EQ(FailureOf([&] { fs.copy("C:\\none.txt", "C:\\x.txt", true); }), 53);
    EXPECT_EQ(FailureOf([&] { fs.copy("C:\\src.txt", "C:\\nodir\\x.txt", true); }), 76);
}

TEST_F(MemoryFileSystemTest, ReplaceSwapsInTheNewFileInOneStep) {
    fs.addFile("C:\\data\\store.dat", "old");
    fs.addFile("C:\\data\\store.tmp", "new");
    fs.replace("C:\\data\\store.tmp", "C:\\data\\Store.dat");
    EXPECT_FALSE(fs.fileExists("C:\\data\\store.tmp"));
    EXPECT_EQ(fs.contents("C:\\data\\store.dat"), "new");
    EXPECT_EQ(fs.longPath("C:\\data\\store.dat"), "C:\\data\\Store.dat");

    fs.addFile("C:\\data\\again.tmp", "newer");
    fs.lock("C:\\data\\store.dat");
    EXPECT_EQ(FailureOf([&] { fs.replace("C:\\data\\again.tmp", "C:\\data\\store.dat"); }), 70);
    EXPECT_EQ(fs.contents("C:\\data\\again.tmp"), "newer");
    fs.lock("C:\\data\\store.dat", false);
    EXPECT_EQ(fs.contents("C:\\data\\store.dat"), "new");
    EXPECT_EQ(FailureOf([&] { fs.replace("C:\\data", "C:\\data\\inner"); }), 75);
}

TEST_F(MemoryFileSystemTest, AnArmedWriteFailureBreaksARewriteHalfWay) {
    fs.addFile("C:\\store.dat", "intact");
    const auto before = fs.writeCount();
    fs.failWrite(2, failure::kDiskFull);
    auto s = fs.open("C:\\store.tmp", OpenMode::Write);
    s->write("one,", 4);
    EXPECT_EQ(FailureOf([&] { s->write("two,", 4); }), failure::kDiskFull);
    s->write("three", 5);  // fails only once
    EXPECT_EQ(fs.contents("C:\\store.tmp"), "one,three");
    EXPECT_EQ(fs.writeCount(), before + 3);
    EXPECT_EQ(fs.contents("C:\\store.dat"), "intact");
}

TEST_F(MemoryFileSystemTest, LongNamesGetShortNamesAndBothLeadToTheFile) {
    fs.addFile("C:\\Program Files\\Orvex Sentry\\Backup.Dat", "b");
    fs.addFolder("C:\\Program Data");
    fs.addFolder("C:\\WINDOWS");
    EXPECT_EQ(fs.shortPath("C:\\Program Files\\Orvex Sentry\\Backup.Dat"),
              "C:\\PROGRA~1\\ORVEXS~1\\Backup.Dat");
    EXPECT_EQ(fs.shortPath("C:\\program data\\"), "C:\\PROGRA~2\\");
    EXPECT_EQ(fs.shortPath("C:\\windows"), "C:\\WINDOWS");
    EXPECT_EQ(fs.contents("C:\\progra~1\\orvexs~1\\backup.dat"), "b");
    EXPECT_EQ(fs.longPath("C:\\PROGRA~1\\ORVEXS~1"), "C:\\Program Files\\Orvex Sentry");
    EXPECT_EQ(FailureOf([&] { fs.shortPath("C:\\Program Files\\none.txt"); }), 53);
    EXPECT_EQ(FailureOf([&] { fs.shortPath("C:\\nowhere\\none.txt"); }), 76);
}

TEST_F(MemoryFileSystemTest, ListGivesSortedEntriesWithShortNamesAndAttributes) {
    fs.addFile("C:\\d\\zeta.txt", "12345");
    fs.addFile("C:\\d\\Alpha long name.txt", "", attr::kHidden);
    fs.addFolder("C:\\d\\mid");
    const auto entries = fs.list("C:\\d");
    ASSERT_EQ(entries.size(), 3u);
    EXPECT_EQ(entries[0].name, "Alpha long name.txt");
    EXPECT_EQ(entries[0].shortName, "ALPHAL~1.TXT");
    EXPECT_EQ(entries[0].attributes, attr::kHidden);
    EXPECT_TRUE(entries[1].isFolder());
    EXPECT_EQ(entries[2].name, "zeta.txt");
    EXPECT_EQ(entries[2].shortName, "");
    EXPECT_EQ(entries[2].size, 5u);
    EXPECT_EQ(entries[2].attributes, attr::kArchive);
}

TEST_F(MemoryFileSystemTest, DrivesComeInLetterOrderWithTheirTypes) {
    fs.addDrive("E:\\", drivetype::kCdRom);
    fs.addDrive("D", drivetype::kRemote, 1234);
    EXPECT_THAT(fs.drives(), ElementsAre("C:\\", "D:\\", "E:\\"));
    EXPECT_EQ(fs.driveType("c:\\"), drivetype::kFixed);
    EXPECT_EQ(fs.driveType("E:"), drivetype::kCdRom);
    EXPECT_EQ(fs.driveType("Z:\\"), drivetype::kNoRoot);
    EXPECT_EQ(fs.freeSpace("D:\\"), 1234u);
    fs.setDriveReady("E:\\", false);
    EXPECT_FALSE(fs.folderExists("E:\\"));
    EXPECT_EQ(FailureOf([&] { fs.list("E:\\"); }), 71);
}

TEST_F(MemoryFileSystemTest, AStreamOutlivesTheDeleteOfItsFile) {
    fs.addFile("C:\\gone.txt", "abc");
    auto s = fs.open("C:\\gone.txt", OpenMode::Read);
    fs.remove("C:\\gone.txt");
    char buffer[3];
    EXPECT_EQ(s->read(buffer, 3), 3u);
}

TEST_F(MemoryFileSystemTest, FilesBelowWalksTheTree) {
    fs.addFile("C:\\t\\b\\two.txt");
    fs.addFile("C:\\t\\one.txt");
    fs.addFile("C:\\elsewhere.txt");
    EXPECT_THAT(fs.filesBelow("C:\\T"), ElementsAre("C:\\t\\b\\two.txt", "C:\\t\\one.txt"));
}

}  // namespace
}  // namespace orvex::platform::memory
