// Memory_test.cpp: what only the memory file system does: sorted listings, its 8.3 names and
// the spelling a replace leaves. The rest of the script (write faults, drives, registry order,
// DWORD bytes, denied keys and timestamps, the clock, processes, mutexes, windows and shell
// calls) is asserted through the helper, store, scan and startup tests, which fail when it breaks.
#include <gtest/gtest.h>

#include <set>
#include <tuple>

#include "platform/memory/MemoryPlatform.h"
#include "platform/memory/ShortNames.h"
#include "support/FailureOf.h"

namespace orvex::platform::memory {
namespace {

using orvex::testing::FailureOf;

class MemoryFileSystemTest : public ::testing::Test {
  protected:
    MemoryFileSystemTest() { fs.addDrive("C:\\"); }

    MemoryFileSystem fs;
};

TEST_F(MemoryFileSystemTest, PathsNeedADriveTheRootStaysAndStreamsOutliveTheirFile) {
    fs.addFile("C:\\Program Files\\App\\Tool.EXE", "MZ");
    fs.addFolder("C:\\d");
    EXPECT_TRUE(fs.folderExists("C:/program files/"));
    EXPECT_EQ(fs.longPath("c:\\program files\\APP\\tool.exe"), "c:\\Program Files\\App\\Tool.EXE");
    EXPECT_FALSE(fs.fileExists("Program Files\\App\\Tool.EXE"));
    EXPECT_EQ(FailureOf([&] { fs.open("C:\\a\\b|.txt", OpenMode::Write); }), 52);
    fs.remove("C:\\d");
    EXPECT_FALSE(fs.folderExists("C:\\d"));
    EXPECT_EQ(FailureOf([&] { fs.remove("C:\\"); }), 75);
    fs.addFile("C:\\gone.txt", "abc");
    auto gone = fs.open("C:\\gone.txt", OpenMode::Read);
    fs.remove("C:\\gone.txt");
    char buffer[3];
    EXPECT_EQ(gone->read(buffer, 3), 3u);
    auto far = fs.open("C:\\gap.bin", OpenMode::Write);
    far->seek(1ull << 40);  // fails instead of allocating
    EXPECT_THROW(far->write("z", 1), Failure);
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
}

std::string Short(std::string_view name, const std::set<std::string>& taken = {}) {
    return MakeShortName(name, [&](std::string_view c) { return taken.count(std::string(c)) > 0; });
}

TEST(ShortNames, LongNamesAreCutCapitalisedAndNumbered) {
    EXPECT_EQ(Short("readme.txt"), "");  // fits 8.3 already
    std::set<std::string> nine;
    for (int n = 1; n <= 9; ++n)
        nine.insert("PROGRA~" + std::to_string(n));
    const std::tuple<const char*, std::set<std::string>, const char*> cases[] = {
        {"Program Files", {}, "PROGRA~1"},   {"Program Files", {"PROGRA~1"}, "PROGRA~2"},
        {"Program Files", nine, "PROGR~10"},  // the base shrinks when the number grows
        {"index.html", {}, "INDEX~1.HTM"},   {"my.long.name.html", {}, "MYLONG~1.HTM"},
        {".htaccess", {}, "HTACCE~1"},       {"a+b c;d.txt", {}, "A_BC_D~1.TXT"},
    };
    for (const auto& [name, taken, expected] : cases)
        EXPECT_EQ(Short(name, taken), expected) << name;
}

}  // namespace
}  // namespace orvex::platform::memory
