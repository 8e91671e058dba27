// FileHelper_test.cpp: path parts, long names, and failures that become results.
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

TEST(FileHelperParts, FolderPartsKeepTheirClosingBackslash) {
    const std::tuple<const char*, const char*, const char*> parts[] = {
        {"C:\\a\\b.txt", "C:\\a\\", "b.txt"},
        {"C:\\a\\", "C:\\a\\", ""},
        {"spy.exe", "", "spy.exe"},
    };
    for (const auto& [path, folder, file] : parts) {
        EXPECT_EQ(FileHelper::FolderPart(path), folder) << path;
        EXPECT_EQ(FileHelper::FilePart(path), file) << path;
    }
}

TEST_F(FileHelperTest, LongNamesTranslateExistingPathsOnly) {
    files.addFile("C:\\Program Files\\Orvex Sentry\\OrvexSentry.exe");
    EXPECT_EQ(helper.LongName("C:\\PROGRA~1\\ORVEXS~1\\ORVEXS~1.EXE"),
              "C:\\Program Files\\Orvex Sentry\\OrvexSentry.exe");
    // Unresolvable paths lose their text.
    EXPECT_EQ(helper.LongName("C:\\NOSUCH~1\\x.txt") + helper.LongName("PROGRA~1.EXE"), "");
}

TEST_F(FileHelperTest, FailuresBecomeResults) {
    files.addFile("C:\\in.txt", "12345");
    files.lock("C:\\in.txt");  // the size can still be read
    EXPECT_EQ(helper.Length("C:\\in.txt"), 5);
    EXPECT_EQ(helper.Length("C:\\none.txt"), -1);
    EXPECT_FALSE(helper.FileExists("") || helper.FileExists("C:\\"));
}

}  // namespace
}  // namespace orvex::platform
