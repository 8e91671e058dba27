// IniFile_test.cpp: profile strings read and written as the Windows profile API does.
#include <gtest/gtest.h>

#include <array>

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

TEST_F(IniFileTest, ReadsIgnoreCaseTrimStayInTheirSectionAndCutToTheCapacity) {
    EXPECT_EQ(read("Language", "CurrentLanguage", "English  "), "English");  // no file
    files.addFile(kFile,
                  "top=before any section\r\n[ Language ]\r\n"
                  "  CurrentLanguage =  English  \r\nQuoted=\"  spaced  \"\r\n"
                  "Half=\"open\r\nEmpty=\r\nkey=first\r\nkey=second\r\n"
                  "[B]\nkey=other\n"  // LF-only lines
                  "[Language]\r\nlate=in a repeated section\r\n[C]\r\nlong=" +
                      std::string(600, 'v') + "\r\n");
    const std::array<const char*, 4> cases[] = {
        {"language", "CURRENTLANGUAGE", "", "English"},
        {"Language", "Quoted", "", "  spaced  "},
        {"Language", "Empty", "default", ""},
        {"Language", "key", "", "first"},
        {"B", "key", "", "other"},
        {"Language", "late", "none", "none"},
        {"B", "missing", " d ", " d"},
    };
    for (const auto& [section, key, fallback, expected] : cases)
        EXPECT_EQ(read(section, key, fallback), expected) << section << "/" << key;
    EXPECT_EQ(read("C", "long"), std::string(511, 'v'));
    EXPECT_EQ(read("C", "missing", "abcdef", 3), "ab");
}

TEST_F(IniFileTest, WritingReplacesOrAppendsWithinTheSectionAndKeepsTheRest) {
    files.addFile(kFile,
                  "; keep me\r\n"
                  "[Main]\r\nSearch Page=http://spy\r\nOther=1\r\n\r\n"
                  "[Next]\r\nx=y\r\n");
    ASSERT_TRUE(WriteProfileString(files, "main", "SEARCH PAGE", "http://good", kFile));
    ASSERT_TRUE(WriteProfileString(files, "Main", "Start Page", "about:blank", kFile));
    ASSERT_TRUE(WriteProfileString(files, "Last", "k", "v", kFile));
    EXPECT_EQ(files.contents(kFile),
              "; keep me\r\n"
              "[Main]\r\nSEARCH PAGE=http://good\r\nOther=1\r\nStart Page=about:blank\r\n\r\n"
              "[Next]\r\nx=y\r\n[Last]\r\nk=v\r\n");
    files.setAttributes(kFile, attr::kReadOnly);
    EXPECT_FALSE(WriteProfileString(files, "Main", "Other", "2", kFile));
    EXPECT_EQ(read("Main", "other"), "1");
}

}  // namespace
}  // namespace orvex::platform
