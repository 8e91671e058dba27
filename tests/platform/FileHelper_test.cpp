// FileHelper_test.cpp: path parts, short and long names, attribute clearing and padding.
#include <gtest/gtest.h>

#include "platform/FileHelper.h"
#include "support/MemoryFixture.h"

namespace orvex::platform {
namespace {

class FileHelperTest : public testing::MemoryPlatformTest {
  protected:
    FileHelper helper;
};

TEST(FileHelperParts, FolderKeepsItsClosingBackslash) {
    EXPECT_EQ(FileHelper::FolderPart("C:\\a\\b.txt"), "C:\\a\\");
    EXPECT_EQ(FileHelper::FilePart("C:\\a\\b.txt"), "b.txt");
    EXPECT_EQ(FileHelper::FolderPart("C:\\a\\"), "C:\\a\\");
    EXPECT_EQ(FileHelper::FilePart("C:\\a\\"), "");
    EXPECT_EQ(FileHelper::FolderPart("spy.exe"), "");
    EXPECT_EQ(FileHelper::FilePart("spy.exe"), "spy.exe");
    EXPECT_EQ(FileHelper::FolderPart("Software\\a\\b"), "Software\\a\\");
}

TEST(FileHelperPad, PadsOnTheSideItIsTold) {
    EXPECT_EQ(FileHelper::Pad("7", 12, "RIGHT", "0"), "000000000007");
    EXPECT_EQ(FileHelper::Pad("10", 12, "RIGHT", "0"), "000000000010");
    EXPECT_EQ(FileHelper::Pad("7", 3, "LEFT", "-"), "7--");
    EXPECT_EQ(FileHelper::Pad("12345", 3, "RIGHT", "0"), "12345");
    EXPECT_EQ(FileHelper::Pad("7", 3, "right", ""), "  7");
    EXPECT_THROW(FileHelper::Pad("7", 1 << 30, "RIGHT", "0"), Failure);
}

TEST_F(FileHelperTest, ShortAndLongNamesTranslateExistingPaths) {
    files.addFile("C:\\Program Files\\Orvex Sentry\\OrvexSentry.exe");
    EXPECT_EQ(helper.ShortName("C:\\Program Files\\Orvex Sentry"), "C:\\PROGRA~1\\ORVEXS~1");
    EXPECT_EQ(helper.LongName("C:\\PROGRA~1\\ORVEXS~1\\ORVEXS~1.EXE"),
              "C:\\Program Files\\Orvex Sentry\\OrvexSentry.exe");
}

TEST_F(FileHelperTest, UnresolvablePathsKeepTheirTextShortAndLoseItLong) {
    EXPECT_EQ(helper.ShortName("NUL"), "NUL");
    EXPECT_EQ(helper.ShortName("C:\\No Such Folder\\x.txt"), "C:\\No Such Folder\\x.txt");
    EXPECT_EQ(helper.LongName("C:\\NOSUCH~1\\x.txt"), "");
    EXPECT_EQ(helper.LongName("PROGRA~1.EXE"), "");
}

TEST_F(FileHelperTest, ExistenceAndDrives) {
    files.addFile("C:\\a\\b.txt");
    files.addDrive("F:\\", drivetype::kRemovable);
    EXPECT_TRUE(helper.FileExists("C:\\a\\b.txt"));
    EXPECT_FALSE(helper.FileExists("C:\\a"));
    EXPECT_TRUE(helper.FolderExists("C:\\a"));
    EXPECT_FALSE(helper.FileExists(""));
    EXPECT_EQ(helper.Drives(), (std::vector<std::string>{"C:\\", "F:\\"}));
    EXPECT_EQ(helper.DriveType("C:\\"), drivetype::kFixed);
    EXPECT_EQ(helper.DriveType("F:\\"), drivetype::kRemovable);
}

TEST_F(FileHelperTest, ClearedAttributesLetAReadOnlyFileGo) {
    files.addFile("C:\\spy.dll", "x", attr::kReadOnly | attr::kHidden | attr::kSystem);
    EXPECT_FALSE(helper.Delete("C:\\spy.dll"));
    EXPECT_TRUE(helper.ClearAttributes("C:\\spy.dll"));
    EXPECT_EQ(files.attributes("C:\\spy.dll"), attr::kNormal);
    EXPECT_TRUE(helper.Delete("C:\\spy.dll"));
    EXPECT_FALSE(helper.ClearAttributes("C:\\spy.dll"));
}

TEST_F(FileHelperTest, FailuresBecomeResults) {
    files.addFile("C:\\in.txt", "12345");
    files.lock("C:\\in.txt");
    EXPECT_FALSE(helper.Copy("C:\\in.txt", "C:\\out.txt"));
    EXPECT_FALSE(helper.Delete("C:\\in.txt"));
    EXPECT_EQ(helper.Length("C:\\in.txt"), 5);
    EXPECT_EQ(helper.Length("C:\\none.txt"), -1);
    files.lock("C:\\in.txt", false);
    EXPECT_TRUE(helper.Copy("C:\\in.txt", "C:\\out.txt"));
    EXPECT_FALSE(helper.Copy("C:\\in.txt", "C:\\out.txt", false));
    EXPECT_EQ(helper.FreeSpace("C:\\"), memory::MemoryFileSystem::kDefaultFreeSpace);
    EXPECT_EQ(helper.FreeSpace("Q:\\"), 0u);
}

}  // namespace
}  // namespace orvex::platform
