// IniFile_test.cpp: profile strings read and written as the Windows profile API does.
#include <gtest/gtest.h>

#include "platform/IniFile.h"
#include "platform/memory/MemoryPlatform.h"

namespace orvex::platform {
namespace {

class IniFileTest : public ::testing::Test {
  protected:
    IniFileTest() { files.addDrive("C:\\"); }

    std::string read(std::string_view section, std::string_view key, std::string_view fallback = "",
                     std::size_t capacity = 512) {
        return ReadProfileString(files, section, key, fallback, capacity, kFile);
    }

    static constexpr std::string_view kFile = "C:\\App\\LangSetting.ini";
    memory::MemoryFileSystem files;
};

TEST_F(IniFileTest, SectionsAndKeysIgnoreCaseAndValuesAreTrimmed) {
    files.addFile(kFile,
                  "; settings\r\n"
                  "[ Language ]\r\n"
                  "  CurrentLanguage =  English  \r\n"
                  "Quoted=\"  spaced  \"\r\n"
                  "Single='x'\r\n"
                  "Half=\"open\r\n"
                  "Empty=\r\n");
    EXPECT_EQ(read("language", "CURRENTLANGUAGE"), "English");
    EXPECT_EQ(read("Language", "Quoted"), "  spaced  ");
    EXPECT_EQ(read("Language", "Single"), "x");
    EXPECT_EQ(read("Language", "Half"), "\"open");
    EXPECT_EQ(read("Language", "Empty", "default"), "");
}

TEST_F(IniFileTest, MissingFileSectionOrKeyGivesTheDefaultWithoutTrailingBlanks) {
    EXPECT_EQ(read("Language", "CurrentLanguage", "English  "), "English");
    files.addFile(kFile, "[Other]\nCurrentLanguage=German\n");
    EXPECT_EQ(read("Language", "CurrentLanguage", "dflt"), "dflt");
    EXPECT_EQ(read("Other", "Missing", " d "), " d");
    EXPECT_EQ(read("Other", "CurrentLanguage"), "German");  // LF-only lines
}

TEST_F(IniFileTest, KeysAreFoundOnlyInTheirOwnSectionAndTheFirstOneCounts) {
    files.addFile(kFile,
                  "top=before any section\r\n"
                  "[A]\r\nkey=first\r\nkey=second\r\n"
                  "[B]\r\nkey=other\r\n"
                  "[A]\r\nlate=in a repeated section\r\n");
    EXPECT_EQ(read("A", "key"), "first");
    EXPECT_EQ(read("B", "key"), "other");
    EXPECT_EQ(read("A", "top", "none"), "none");
    EXPECT_EQ(read("A", "late", "none"), "none");
}

TEST_F(IniFileTest, TheValueIsCutToOneLessThanTheCapacity) {
    const std::string longValue(600, 'v');
    files.addFile(kFile, "[S]\r\nk=" + longValue + "\r\n");
    EXPECT_EQ(read("S", "k").size(), 511u);
    EXPECT_EQ(read("S", "k", "", 4), "vvv");
    EXPECT_EQ(read("S", "k", "", 1), "");
    EXPECT_EQ(read("S", "k", "", 0), "");
    EXPECT_EQ(read("S", "missing", "abcdef", 3), "ab");
}

TEST_F(IniFileTest, WritingCreatesTheFileSectionAndKey) {
    files.addFolder("C:\\App");
    ASSERT_TRUE(WriteProfileString(files, "Language", "CurrentLanguage", "English", kFile));
    EXPECT_EQ(files.contents(kFile), "[Language]\r\nCurrentLanguage=English\r\n");
    ASSERT_TRUE(WriteProfileString(files, "Other", "k", "v", kFile));
    EXPECT_EQ(files.contents(kFile), "[Language]\r\nCurrentLanguage=English\r\n[Other]\r\nk=v\r\n");
}

TEST_F(IniFileTest, WritingReplacesOrAppendsWithinTheSectionAndKeepsTheRest) {
    files.addFile(kFile,
                  "; keep me\r\n"
                  "[Main]\r\nSearch Page=http://spy\r\nOther=1\r\n\r\n"
                  "[Next]\r\nx=y\r\n");
    ASSERT_TRUE(WriteProfileString(files, "main", "SEARCH PAGE", "http://good", kFile));
    ASSERT_TRUE(WriteProfileString(files, "Main", "Start Page", "about:blank", kFile));
    EXPECT_EQ(files.contents(kFile),
              "; keep me\r\n"
              "[Main]\r\nSEARCH PAGE=http://good\r\nOther=1\r\nStart Page=about:blank\r\n\r\n"
              "[Next]\r\nx=y\r\n");
    EXPECT_EQ(ReadProfileString(files, "Main", "search page", "", 512, kFile), "http://good");
}

TEST_F(IniFileTest, WritingWhereNoFileCanBeMadeFails) {
    EXPECT_FALSE(WriteProfileString(files, "S", "k", "v", "C:\\NoFolder\\x.ini"));
    files.addFile(kFile, "[S]\r\nk=old\r\n", attr::kReadOnly);
    EXPECT_FALSE(WriteProfileString(files, "S", "k", "new", kFile));
    EXPECT_EQ(ReadProfileString(files, "S", "k", "", 512, kFile), "old");
}

}  // namespace
}  // namespace orvex::platform
