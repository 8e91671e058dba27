// Language_test.cpp: the language table's load at start, the INI value read and write, and
// the shipped English language file.
#include "ui/Language.h"

#include <set>

#include "core/AppState.h"
#include "support/MemoryFixture.h"
#include "support/SourceFile.h"

namespace orvex {
namespace {

using testing::ReadSourceFile;

const std::string kFolder = "C:\\Program Files\\Orvex\\";

class LanguageTest : public testing::MemoryPlatformTest {
  protected:
    LanguageTest() {
        App().AppPath = "C:\\Program Files\\Orvex";
        CurrentLanguage() = "Test";
    }

    void Load(const std::string& bytes) {
        files.addFile(kFolder + "Test.lng", bytes);
        LoadLanguageAtStart();
    }
    // How many entries of the table hold a text.
    int Filled() {
        int count = 0;
        for (const auto& text : LngArray())
            count += text.empty() ? 0 : 1;
        return count;
    }
};

TEST_F(LanguageTest, IndexesPastTheTableAreSkippedAndReadingGoesOn) {
    // Text is cut at a second "=" and keeps its blanks.
    Load("[Strings]\r\n1=One=b\r\n1301=Too far\r\n2= Two \r\n1300=Last\r\n0=Zero\r\n-1=Minus\r\n");
    EXPECT_EQ(Lng(0) + Lng(1) + Lng(2) + Lng(1300), "ZeroOne Two Last");
    EXPECT_EQ(Filled(), 4);
}

TEST_F(LanguageTest, OnlyTheExactStringsLineStartsReadingAndNothingStopsIt) {
    Load(
        "[frmmain]\r\n3=Before\r\n[strings]\r\n4=Lower case\r\n [Strings]\r\n5=Blank\r\n"
        "[Strings]\r\n7=Seven\r\n[frmscan]\r\nfrmscan.Caption=Scanning\r\n8=Eight\r\n");
    EXPECT_EQ(Lng(3) + Lng(4) + Lng(5), "");
    // A key that is no number keeps the last index: a form section after [Strings] overwrites.
    EXPECT_EQ(Lng(7) + "|" + Lng(8), "Scanning|Eight");
}

TEST_F(LanguageTest, IndexesConvertAsClassicIntegers) {
    Load("[Strings]\r\nx=Start\r\n 12 =Blanks\r\n2.5=Even\r\n&H10=Hex\r\n40000=Overflow\r\n");
    // No index read yet: the first one is 0. 40000 overflows a 16-bit index and keeps 16.
    EXPECT_EQ(Lng(0) + "|" + Lng(12) + "|" + Lng(2) + "|" + Lng(16), "Start|Blanks|Even|Overflow");
}

TEST_F(LanguageTest, LinesEndAtCarriageReturnsOnly) {
    Load("[Strings]\r1=One\n2=Two\r\n");
    EXPECT_EQ(Lng(1) + "|" + Lng(2), "One\n2|");
}

TEST_F(LanguageTest, CurrentLanguageComesFromTheSettingsWhenEmpty) {
    CurrentLanguage().clear();
    files.addFile(kFolder + "LangSetting.ini", "[Language]\r\nCurrentLanguage=Deutsch\r\n");
    files.addFile(kFolder + "Deutsch.lng", "[Strings]\r\n2=Willkommen\r\n");
    LoadLanguageAtStart();
    EXPECT_EQ(CurrentLanguage(), "Deutsch");
    EXPECT_EQ(Lng(2), "Willkommen");

    // Once known, the setting is not read again.
    WriteLanguageValue("Language", "CurrentLanguage", "Other", kFolder + "LangSetting.ini");
    LoadLanguageAtStart();
    EXPECT_EQ(CurrentLanguage(), "Deutsch");
}

TEST_F(LanguageTest, FolderTextHasOneClosingBackslash) {
    EXPECT_EQ(LanguageFolder(), kFolder);
    App().AppPath = "C:\\";
    EXPECT_EQ(LanguageFolder(), "C:\\");
    LngArray()[9] = "kept";
    LoadLanguageAtStart();  // a missing file leaves the table alone
    EXPECT_EQ(Lng(9), "kept");
    EXPECT_EQ(Filled(), 1);
    files.addFile("C:\\Test.lng", "[Strings]\r\n1=Root\r\n");
    LoadLanguageAtStart();
    EXPECT_EQ(Lng(1), "Root");
}

// A file of `size` bytes that holds the key in a section at the start.
std::string PaddedIni(const std::string& entry, std::size_t size) {
    std::string text = "[frmmain]\r\n" + entry + "\r\n[pad]\r\n;";
    text += std::string(size - text.size() - 2, 'p') + "\r\n";
    return text;
}

TEST_F(LanguageTest, ValueReadSwitchesToTheLineScanAt64001Bytes) {
    const std::string file = kFolder + "Big.lng";
    files.addFile(file, PaddedIni("frmmain.Caption=Hello World", 64000));
    ASSERT_EQ(files.length(file), 64000u);
    EXPECT_EQ(ReadLanguageValue(file, "frmmain", "frmmain.Caption"), "Hello World");
    EXPECT_EQ(ReadLanguageValue(file, "other", "frmmain.Caption"), "");

    files.addFile(file, PaddedIni("frmmain.Caption=Hello World", 64001));
    // Two characters after the key, the last two cut; the section plays no part.
    EXPECT_EQ(ReadLanguageValue(file, "frmmain", "frmmain.Caption") + "|" +
                  ReadLanguageValue(file, "other", "frmmain.Caption") + "|" +
                  ReadLanguageValue(file, "frmmain", "frmmain") + "|" +
                  ReadLanguageValue(file, "frmmain", "missing"),
              "ello Wor|ello Wor|aption=Hello Wor|");
}

TEST_F(LanguageTest, EnglishFileKeepsTheKeyPiecesAndTellsCategoriesApart) {
    const std::string english = ReadSourceFile("lang/English.lng");
    ASSERT_FALSE(english.empty());
    files.addFile(kFolder + "English.lng", english);
    CurrentLanguage() = "English";
    LoadLanguageAtStart();
    // Both key records join pieces of 2, 3 and 4 characters into the same key.
    EXPECT_EQ(Lng(305).size() * 100 + Lng(306).size() * 10 + Lng(307).size(), 234u);
    EXPECT_EQ(Lng(305) + Lng(306) + Lng(307), Lng(314) + Lng(315) + Lng(316));

    // The detail view tells the categories apart by their texts.
    std::set<std::string> categories;
    for (int n = 1193; n <= 1209; ++n)
        categories.insert(Lng(n));
    categories.insert(Lng(1227));
    categories.insert(Lng(111));
    EXPECT_EQ(categories.size(), 19u);
    for (const auto& word : categories)
        EXPECT_EQ(word.find(','), std::string::npos) << word;
}

}  // namespace
}  // namespace orvex
