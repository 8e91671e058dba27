// FileHelper_test.cpp: path parts, short and long names, attribute clearing and padding.
#include <gtest/gtest.h>

#include <tuple>

#include "platform/FileHelper.h"
#include "support/MemoryFixture.h"

namespace orvex::platform {
namespace {

class FileHelperTest : public testing::MemoryPlatformTest {
  protected:
    FileHelper helper;
};

TEST(FileHelperText, FolderPartsKeepTheirBackslashAndPadsGoOnTheSideTheyAreTold) {
    const std::tuple<const char*, const char*, const char*> parts[] = {
        {"C:\\a\\b.txt", "C:\\a\\", "b.txt"},
        {"C:\\a\\", "C:\\a\\", ""},
        {"spy.exe", "", "spy.exe"},
        {"Software\\a\\b", "Software\\a\\", "b"},
    };
    for (const auto& [path, folder, file] : parts) {
        EXPECT_EQ(FileHelper::FolderPart(path), folder) << path;
        EXPECT_EQ(FileHelper::FilePart(path), file) << path;
    }
    EXPECT_EQ(FileHelper::Pad("10", 12, "RIGHT", "0"), "000000000010");
    EXPECT_EQ(FileHelper::Pad("7", 3, "LEFT", "-"), "7--");
    EXPECT_EQ(FileHelper::Pad("12345", 3, "RIGHT", "0"), "12345");
    EXPECT_EQ(FileHelper::Pad("7", 3, "right", ""), "  7");
    EXPECT_THROW(FileHelper::Pad("7", 1 << 30, "RIGHT", "0"), Failure);
}

TEST_F(FileHelperTest, ShortAndLongNamesTranslateExistingPathsOnly) {
    files.addFile("C:\\Program Files\\Orvex Sentry\\OrvexSentry.exe");
    EXPECT_EQ(helper.ShortName("C:\\Program Files\\Orvex Sentry"), "C:\\PROGRA~1\\ORVEXS~1");
    EXPECT_EQ(helper.LongName("C:\\PROGRA~1\\ORVEXS~1\\ORVEXS~1.EXE"),
              "C:\\Program Files\\Orvex Sentry\\OrvexSentry.exe");
    // Unresolvable paths keep their text short and lose it long.
    EXPECT_EQ(helper.ShortName("NUL"), "NUL");
    EXPECT_EQ(helper.ShortName("C:\\No Such Folder\\x.txt"), "C:\\No Such Folder\\x.txt");
    EXPECT_EQ(helper.LongName("C:\\NOSUCH~1\\x.txt") + helper.LongName("PROGRA~1.EXE"), "");
}

TEST_F(FileHelperTest, FailuresBecomeResultsAndClearedAttributesLetAFileGo) {
    files.addFile("C:\\in.txt", "12345");
    files.addFile("C:\\spy.dll", "x", attr::kReadOnly | attr::kHidden | attr::kSystem);
    files.lock("C:\\in.txt");
    EXPECT_FALSE(helper.Copy("C:\\in.txt", "C:\\out.txt") || helper.Delete("C:\\in.txt"));
    EXPECT_EQ(helper.Length("C:\\in.txt"), 5);
    EXPECT_EQ(helper.Length("C:\\none.txt"), -1);
    files.lock("C:\\in.txt", false);
    EXPECT_TRUE(helper.Copy("C:\\in.txt", "C:\\out.txt"));
    EXPECT_FALSE(helper.Copy("C:\\in.txt", "C:\\out.txt", false));
    EXPECT_EQ(helper.FreeSpace("Q:\\"), 0u);
    EXPECT_FALSE(helper.FileExists("") || helper.FileExists("C:\\"));
    EXPECT_FALSE(helper.Delete("C:\\spy.dll"));
    EXPECT_TRUE(helper.ClearAttributes("C:\\spy.dll"));
    EXPECT_EQ(files.attributes("C:\\spy.dll"), attr::kNormal);
    EXPECT_TRUE(helper.Delete("C:\\spy.dll"));
    EXPECT_FALSE(helper.ClearAttributes("C:\\spy.dll"));
}

}  // namespace
}  // namespace orvex::platform
