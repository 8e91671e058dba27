// DetailsPage_test.cpp: frmdetails shows the recorder's lists, which outlive the form; its
// threat list, level filter and sorting; removing and allowing the threats the user picks.
#include "pages/DetailsPage.h"

#include <algorithm>

#include "core/AppState.h"
#include "definitions/DefinitionTables.h"
#include "pages/DetailedPage.h"
#include "pages/ResultsPage.h"
#include "scan/Recorder.h"
#include "stores/AllowedItems.h"
#include "support/MemoryFixture.h"
#include "ui/Form.h"

namespace orvex {
namespace {

class DetailsPageTest : public testing::MemoryPlatformTest {
  protected:
    DetailsPageTest() {
        App().AppPath = "C:\\App";
        App().DataFolder = "C:\\App\\";
        App().BackupFolder = "C:\\App\\Backup";
        files.addFolder("C:\\App\\Backup");
        for (const auto& [n, text] : {std::pair(65, "All"),
                                      {87, "Low"},
                                      {88, "Medium"},
                                      {89, "High"},
                                      {66, "listed"},
                                      {111, "Unclassified"},
                                      {1193, "Adware"},
                                      {1201, "Keylogger"}})
            LngArray()[n] = text;
        // A code without a description and a line too short to count.
        for (const char* line : {"SPY|3|a?k", "Short|1"})
            AppendLine(Definitions().ItemListDefs, line);
        for (const char* line : {"a|Adware", "k|Keylogger"})
            AppendLine(Definitions().DescriptionDefs, line);
        for (const auto& [name, item, icon] : {std::tuple("Spy", "a.dll", 2),
                                               {"Other", "o.dll", 1},
                                               {"Spy", "b.dll", 3},
                                               {"Short", "s.dll", 6}}) {
            files.addFile(std::string("C:\\x\\") + item, "MZ");
            ScumListOfRun().add({name, "FileSystem", "Confirmed", "C:\\x\\", item, icon});
            const auto& names = List1OfRun().Items();
            if (std::find(names.begin(), names.end(), name) == names.end())
                List1OfRun().AddItem(name);
        }
    }
    // lvEasy as "name|categories|level", the selected row marked with "*".
    static std::string Easy() {
        std::string text;
        for (const ui::ListItem& row : frmdetails().lvEasy.ListItems)
            text += row.Text + "|" + row.SubItems[0] + "|" + row.SubItems[1] +
                    (row.Selected ? "* " : " ");
        return text;
    }
    static void Pick(const std::string& level) {
        frmdetails().Combo1.Text = level;
        frmdetails().Combo1_Click();
    }
    static void Select(const std::string& name) {
        for (ui::ListItem& row : frmdetails().lvEasy.ListItems)
            row.Selected = row.Text == name;
    }
};

TEST_F(DetailsPageTest, ViewsReadTheRecordersListsAcrossUnloads) {
    FrmDetails& page = frmdetails();
    EXPECT_EQ(page.FindControl("lvDetails"), &page.lvDetails);
    EXPECT_FALSE(page.lvDetails.Visible || page.List1.Visible);
    page.lvDetails.Rows().setChecked(1, true);
    ASSERT_TRUE(ui::Unload(page));
    ScumListDetailsAdd("New", "FileSystem", "C:\\Temp\\", "new.exe", "");
    const FrmDetails& again = frmdetails();
    ASSERT_EQ(again.lvDetails.Rows().count(), 5);
    EXPECT_TRUE(again.lvDetails.Rows().row(1).checked);
    EXPECT_EQ(again.List1.Names().ListCount(), 4);
}

// One row a threat, whose level is its first finding's; the filter never touches the findings.
TEST_F(DetailsPageTest, TheThreatListFiltersByLevelAndSorts) {
    Pick("All");
    EXPECT_EQ(Easy(),
              "Spy| Adware, Keylogger|Medium* Other|Unclassified|Low Short|Unclassified|Low ");
    EXPECT_EQ(frmdetails().Label1.Caption, "3 listed");
    Pick("Low");
    EXPECT_EQ(Easy(), "Other|Unclassified|Low* Short|Unclassified|Low ");
    Pick("High");
    EXPECT_EQ(Easy(), "");
    Pick("All");
    frmdetails().lvEasy_ColumnClick(0);
    frmdetails().lvEasy_ColumnClick(0);
    EXPECT_EQ(Easy(),
              "Spy| Adware, Keylogger|Medium* Short|Unclassified|Low Other|Unclassified|Low ");
    EXPECT_EQ(ScumListOfRun().count(), 4);

    Pick("Low");  // the results page's link comes back to every level
    frmresults().Image2.Click();
    EXPECT_EQ(Easy(),
              "Spy| Adware, Keylogger|Medium* Other|Unclassified|Low Short|Unclassified|Low ");
    EXPECT_TRUE(frmdetails().Visible && !frmresults().Visible);
}

// Each category of the picked threat gets a heading and its explanation; Cookies, Retrospy and
// anything unknown get the default, since the table has nothing for them.
TEST_F(DetailsPageTest, TheDetailViewExplainsEachCategoryOfThePickedThreat) {
    for (const auto& [n, text] : {std::pair(1192, "shows ads"),
                                  {1177, "records keys"},
                                  {1194, "Cookies"},
                                  {1204, "Retrospy"},
                                  {1184, "spies"}})
        LngArray()[n] = text;
    Pick("All");
    frmdetails().Image3_MouseDown(1);
    EXPECT_EQ(frmdetailed().Label1.Caption, "Spy");
    EXPECT_EQ(frmdetailed().rtbdetail.Text(),
              "Adware:     shows ads\r\n\r\nKeylogger:     records keys\r\n\r\n");
    EXPECT_TRUE(frmdetailed().rtbdetail.Runs[0].Bold && !frmdetailed().rtbdetail.Runs[1].Bold);
    std::string texts;
    for (std::string category : {" Cookies", "Retrospy", "LngArray(1204)", "Unclassified", "?"})
        texts += frmdetailed().GetItemDetail(category) + "|";
    EXPECT_EQ(texts,
              " No details available.| No details available.|spies|"
              " No details available.| No details available.|");
}

TEST_F(DetailsPageTest, PickedThreatsAreAllowedWithEveryFindingOrRemovedByName) {
    Pick("All");
    Select("spy");  // allowing compares names in lower case, selecting does not
    frmdetails().Image4_MouseDown(1);
    EXPECT_EQ(ExclusionRecords().Count(), 0);
    Select("Spy");
    frmdetails().Image4_MouseDown(2);  // the right button does nothing
    frmdetails().Image4_MouseDown(1);
    EXPECT_EQ(ExclusionRecords().Count(), 2);
    EXPECT_EQ(files.contents("C:\\App\\Exclude.dat"),
              "Spy^C:\\x\\^b.dll^FileSystem\r\nSpy^C:\\x\\^a.dll^FileSystem\r\n");
    EXPECT_EQ(Easy() + frmdetails().Label1.Caption,
              "Other|Unclassified|Low Short|Unclassified|Low 2 listed");
    EXPECT_EQ(List1OfRun().Items(), (std::vector<std::string>{"Other", "Short"}));

    Pick("Low");
    Select("Short");
    frmdetails().Image2_MouseDown(1);
    EXPECT_FALSE(files.exists("C:\\x\\s.dll"));
    EXPECT_TRUE(files.exists("C:\\x\\o.dll"));
    EXPECT_EQ(App().ThreatCount, 1);
    EXPECT_EQ(Easy() + frmdetails().Label1.Caption, "Other|Unclassified|Low 1 listed");
}

}  // namespace
}  // namespace orvex
