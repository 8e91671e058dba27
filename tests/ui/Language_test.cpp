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
    Load("[Strings]\r\n1=One\r\n1301=Too far\r\n2=Two\r\n1300=Last\r\n0=Zero\r\n-1=Minus\r\n");
    EXPECT_EQ(Lng(0), "Zero");
    EXPECT_EQ(Lng(1), "One");
    EXPECT_EQ(Lng(2), "Two");
    EXPECT_EQ(Lng(1300), "Last");
    EXPECT_EQ(Filled(), 4);
}

TEST_F(LanguageTest, TextIsCutAtASecondEqualsSign) {
    Load("[Strings]\r\n5=a=b=c\r\n6=\r\n7= padded \r\n");
    EXPECT_EQ(Lng(5), "a");
    EXPECT_EQ(Lng(6), "");
    EXPECT_EQ(Lng(7), " padded ");
}

TEST_F(LanguageTest, OnlyTheExactStringsLineStartsReadingAndNothingStopsIt) {
    Load(
        "[frmmain]\r\n3=Before\r\n[strings]\r\n4=Lower case\r\n [Strings]\r\n5=Blank\r\n"
        "[Strings]\r\n7=Seven\r\n[frmscan]\r\nfrmscan.Caption=Scanning\r\n8=Eight\r\n");
    EXPECT_EQ(Lng(3), "");
    EXPECT_EQ(Lng(4), "");
    EXPECT_EQ(Lng(5), "");
    // A key that is no number keeps the last index: a form section after [Strings] overwrites.
    EXPECT_EQ(Lng(7), "Scanning");
    EXPECT_EQ(Lng(8), "Eight");
}

TEST_F(LanguageTest, IndexesConvertAsClassicIntegers) {
    Load("[Strings]\r\nx=Start\r\n 12 =Blanks\r\n2.5=Even\r\n&H10=Hex\r\n40000=Overflow\r\n");
    EXPECT_EQ(Lng(0), "Start");  // no index read yet: the first one is 0
    EXPECT_EQ(Lng(12), "Blanks");
    EXPECT_EQ(Lng(2), "Even");
    EXPECT_EQ(Lng(16), "Overflow");  // 40000 overflows a 16-bit index and keeps 16
}

TEST_F(LanguageTest, LinesEndAtCarriageReturnsOnly) {
    Load("[Strings]\r1=One\n2=Two\r\n");
    EXPECT_EQ(Lng(1), "One\n2");
    EXPECT_EQ(Lng(2), "");
}

TEST_F(LanguageTest, MissingFileLeavesTheTableAlone) {
    LngArray()[9] = "kept";
    LoadLanguageAtStart();
    EXPECT_EQ(Lng(9), "kept");
    EXPECT_EQ(Filled(), 1);
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
    EXPECT_EQ(ReadLanguageValue(file, "frmmain", "frmmain.Caption"), "ello Wor");
    EXPECT_EQ(ReadLanguageValue(file, "other", "frmmain.Caption"), "ello Wor");
    EXPECT_EQ(ReadLanguageValue(file, "frmmain", "frmmain"), "aption=Hello Wor");
    EXPECT_EQ(ReadLanguageValue(file, "frmmain", "missing"), "");
}

TEST_F(LanguageTest, ValueReadOfSmallFiles) {
    const std::string file = kFolder + "Small.lng";
    const std::string longText(600, 'v');
    files.addFile(file, "[frmmain]\r\nfrmmain.Tag=" + longText + "\r\n");
    EXPECT_EQ(ReadLanguageValue(file, "frmmain", "frmmain.Tag"), longText.substr(0, 511));
    EXPECT_EQ(ReadLanguageValue(kFolder + "None.lng", "frmmain", "frmmain.Tag"), "");

    WriteLanguageValue("Language", "CurrentLanguage", "Italiano", file);
    EXPECT_EQ(ReadLanguageValue(file, "Language", "CurrentLanguage"), "Italiano");
}

// Every index of the table that the program shows or joins.
constexpr int kNamedIndexes[] = {
    2,    3,    4,    5,    6,    10,   11,   12,   13,   14,   15,   16,   17,   18,   19,
    20,   21,   22,   25,   26,   28,   34,   35,   36,   37,   39,   40,   48,   49,   50,
    52,   53,   55,   61,   62,   65,   87,   88,   89,   90,   91,   111,  118,  119,  122,
    123,  124,  125,  126,  175,  176,  177,  230,  231,  232,  233,  238,  243,  252,  261,
    270,  279,  288,  289,  294,  298,  300,  303,  304,  305,  306,  307,  309,  312,  313,
    314,  315,  316,  322,  331,  340,  349,  358,  367,  368,  376,  379,  431,  667,  706,
    1029, 1030, 1117, 1122, 1142, 1143, 1172, 1173, 1177, 1178, 1179, 1180, 1181, 1182, 1183,
    1184, 1187, 1188, 1189, 1191, 1192, 1193, 1194, 1195, 1196, 1197, 1198, 1199, 1200, 1201,
    1202, 1203, 1204, 1205, 1206, 1207, 1208, 1209, 1210, 1218, 1219, 1220, 1221, 1222, 1227,
};

TEST_F(LanguageTest, EnglishFileFillsEveryNamedIndex) {
    const std::string english = ReadSourceFile("lang/English.lng");
    ASSERT_FALSE(english.empty());
    files.addFile(kFolder + "English.lng", english);
    CurrentLanguage() = "English";
    LoadLanguageAtStart();
    for (int n : kNamedIndexes)
        EXPECT_FALSE(Lng(n).empty()) << n;
    EXPECT_EQ(Filled(), static_cast<int>(std::size(kNamedIndexes)));

    // Both key records join pieces of 2, 3 and 4 characters into the same key.
    EXPECT_EQ(Lng(305).size() + Lng(306).size() + Lng(307).size(), 9u);
    EXPECT_EQ(Lng(305).size(), 2u);
    EXPECT_EQ(Lng(306).size(), 3u);
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
