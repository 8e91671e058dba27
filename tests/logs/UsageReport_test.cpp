// UsageReport_test.cpp: the lines of ovsstat.ph and the category text they carry.
#include "logs/UsageReport.h"

#include "logs/LogFixture.h"

namespace orvex {
namespace {

const std::string kUsageFile = "C:\\Orvex\\Data\\ovsstat.ph";

class UsageReportTest : public testing::LogTest {
  protected:
    UsageReportTest() {
        for (const char* line : {"Nocats|2", "Toolbar Plus|3|", "toolbar plus|3|ab", "Odd|1|aqzt"})
            AppendLine(Definitions().ItemListDefs, line);
        for (const char* line : {"a|Adware", "b|Trojan", "q|Quirkware", "z", "t|Spyware"})
            AppendLine(Definitions().DescriptionDefs, line);
    }

    void Allow(const std::string& name) {
        ExclusionRecords().Add(ExclusionRecord{name, "FileSystem", "C:\\", "x.exe"});
    }
};

TEST_F(UsageReportTest, DetailListsTheCategoriesOfTheFirstLineThatHasAny) {
    // The line without categories is passed over; the name compares in lower case. A word
    // the table lacks gives an empty text; a code without a description is skipped.
    EXPECT_EQ(GetItemDetail("TOOLBAR PLUS") + "|" + GetItemDetail("Odd") + "|" +
                  GetItemDetail("Nocats") + "|" + GetItemDetail("Unknown"),
              " Adware, Trojan| Adware, , Spyware|Unclassified|Unclassified");
}

TEST_F(UsageReportTest, LineWithoutAllowedItemsEndsInTheSeparator) {
    PhoneHome("Toolbar Plus", kUsageRemoved);
    PhoneHome("   Nocats ", kUsageRestored);  // leading blanks go, trailing ones stay
    PhoneHome("    ", kUsageAllowed);
    EXPECT_EQ(files.contents(kUsageFile),
              "Toolbar Plus| Adware, Trojan|1|\r\n"
              "Nocats |Unclassified|3|\r\n"
              "|Unclassified|2|\r\n");
}

TEST_F(UsageReportTest, AllowedNamesAreDistinctInTableOrderAsFirstSpelled) {
    Allow("Beta");
    Allow("alpha");
    Allow("");
    Allow("BETA");
    Allow("Alpha");
    Allow("gamma");
    PhoneHome("Odd", kUsageAllowed);
    EXPECT_EQ(files.contents(kUsageFile), "Odd| Adware, , Spyware|2|Beta,alpha,gamma\r\n");
}

TEST_F(UsageReportTest, AFileThatCannotBeWrittenIsReportedAndLeftAlone) {
    files.addFile(kUsageFile, "old\r\n");
    files.lock(kUsageFile);
    PhoneHome("Odd", kUsageRemoved);
    files.lock(kUsageFile, false);
    EXPECT_EQ(files.contents(kUsageFile), "old\r\n");
    EXPECT_NE(files.contents(kErrorLog).find("Procedure ( PhoneHome ) - Module ( Module2 )"),
              std::string::npos);
}

}  // namespace
}  // namespace orvex
