// AllowedItems_test.cpp: Exclude.dat read, rewritten and edited through frmexclude.
#include "stores/AllowedItems.h"

#include "core/AppState.h"
#include "core/AtomicFile.h"
#include "pages/ExcludePage.h"
#include "support/MemoryFixture.h"
#include "ui/Form.h"

namespace orvex {
namespace {

const std::string kStore = "C:\\App\\Exclude.dat";

using Lines = std::vector<std::string>;

class AllowedItemsTest : public testing::MemoryPlatformTest {
  protected:
    AllowedItemsTest() {
        App().AppPath = "C:\\App";
        App().DataFolder = "C:\\Data\\";
        files.addFolder("C:\\App");
        files.addFolder("C:\\Data");
    }

    // Each record as "threat|kind|location|name".
    static Lines Records() {
        Lines out;
        for (const ExclusionRecord& r : ExclusionRecords())
            out.push_back(r.ThreatName + "|" + r.ItemKind + "|" + r.ItemLocation + "|" +
                          r.ItemName);
        return out;
    }
    static Lines Texts(const ui::ListView& list) {
        Lines out;
        for (const ui::ListItem& row : list.ListItems)
            out.push_back(row.Text);
        return out;
    }
    void Select(const std::string& threat) {
        for (ui::ListItem& row : frmexclude().lvE1.ListItems)
            row.Selected = row.Text == threat;
    }
};

// A caret in a field shifts the fields after it: five pieces, the folder's tail becomes
// the name and the name the kind, and written back the fifth piece is gone for good.
TEST_F(AllowedItemsTest, WriteExclusionsRoundTripsAndReloads) {
    ExclusionRecords().Add({"Spy", "FileSystem", "C:\\x\\", "a.exe"});
    ExclusionRecords().Add({"Key", "Registry(Key)", "", "HKEY_CURRENT_USER\\Software\\Key"});
    ExclusionRecords().Add({"Odd", "FileSystem", "C:\\odd^dir\\", "a.exe"});
    WriteExclusions();
    const std::string kept =
        "Spy^C:\\x\\^a.exe^FileSystem\r\n"
        "Key^^HKEY_CURRENT_USER\\Software\\Key^Registry(Key)\r\n";
    EXPECT_EQ(files.contents(kStore), kept + "Odd^C:\\odd^dir\\^a.exe^FileSystem\r\n");
    EXPECT_EQ(Records(), (Lines{"Spy|FileSystem|C:\\x\\|a.exe",
                                "Key|Registry(Key)||HKEY_CURRENT_USER\\Software\\Key",
                                "Odd|a.exe|C:\\odd|dir\\"}));
    WriteExclusions();
    EXPECT_EQ(files.contents(kStore), kept + "Odd^C:\\odd^dir\\^a.exe\r\n");
    EXPECT_EQ(ErrorLog(), "");
}

TEST_F(AllowedItemsTest, ShortOddAndBinaryLinesAreSkippedOrKeptAsBytes) {
    const char kBinary[] = "\x00\xff^\x01^\x80^FileSystem";
    const std::string binary(kBinary, sizeof kBinary - 1);
    files.addFile(kStore, "three^fields^only\r\n\r\n^^^\r\nlf\n^a^b^FileSystem\r" + binary +
                              "\r\n^^^^^^^^^^\rno end^x^y^z");
    LoadExclusion();
    EXPECT_EQ(Records(),
              (Lines{"|||", "lf\n|FileSystem|a|b", std::string("\x00\xff|FileSystem|\x01|\x80", 17),
                     "|||", "no end|z|x|y"}));
}

// An absent store is no error; one that cannot be opened is logged.
TEST_F(AllowedItemsTest, AnAbsentOrLockedStoreLeavesTheListEmpty) {
    ExclusionRecords().Add({"stale", "FileSystem", "a", "b"});
    LoadExclusion();
    EXPECT_EQ(ExclusionRecords().Count(), 0);
    EXPECT_EQ(ErrorLog(), "");

    files.addFile(kStore, "Spy^a^b^FileSystem\r\n");
    files.lock(kStore);
    LoadExclusion();
    EXPECT_EQ(ExclusionRecords().Count(), 0);
    EXPECT_NE(ErrorLog().find("Procedure ( LoadExclusion )"), std::string::npos);
}

// Lines become records with the kind second.
TEST_F(AllowedItemsTest, TheWindowListsThreatsOnceAndOnlyKnownKinds) {
    files.addFile(kStore,
                  "Spy^C:\\^a.exe^FileSystem\r\n"
                  "Other^l^n^Memory Resident\r\n"
                  "SPY^HKEY_CURRENT_USER\\S^v^Registry(Value)\r\n"
                  "Ad^HKEY_CURRENT_USER\\Ad^^Registry(Key)\r\n");
    FrmExclude& form = frmexclude();
    EXPECT_EQ(Records()[2], "SPY|Registry(Value)|HKEY_CURRENT_USER\\S|v");
    EXPECT_EQ(Texts(form.lvExclusion), (Lines{"Spy", "SPY", "Ad"}));
    EXPECT_EQ(form.lvExclusion.ListItems[1].SubItems,
              (Lines{"Registry(Value)", "HKEY_CURRENT_USER\\S", "v"}));
    EXPECT_EQ(Texts(form.lvE1), (Lines{"Spy", "Ad"}));
    form.lvE1.ColumnClick(0);
    EXPECT_EQ(Texts(form.lvE1), (Lines{"Ad", "Spy"}));
    form.lvE1.ColumnClick(0);  // the same head again turns the order round
    EXPECT_EQ(Texts(form.lvE1), (Lines{"Spy", "Ad"}));
}

TEST_F(AllowedItemsTest, TakingAThreatOffWithTheLeftButtonRemovesAllItsRecords) {
    files.addFile(kStore,
                  "Spy^C:\\^a.exe^FileSystem\r\n"
                  "Ad^HKEY_CURRENT_USER\\Ad^^Registry(Key)\r\n"
                  "spy^HKEY_CURRENT_USER\\S^v^Registry(Value)\r\n"
                  "Odd^l^n^Cookie\r\n");
    FrmExclude& form = frmexclude();
    Select("Spy");
    form.Image2_MouseDown(2);  // only the left button removes
    EXPECT_EQ(Texts(form.lvE1), (Lines{"Spy", "Ad"}));
    form.Image2_MouseDown(1);
    EXPECT_EQ(Texts(form.lvE1), Lines{"Ad"});
    EXPECT_TRUE(form.lvE1.ListItems[0].Selected);
    // The rewrite holds what the window held: a row of unknown kind was never shown and
    // is dropped with the rest.
    EXPECT_EQ(files.contents(kStore), "Ad^HKEY_CURRENT_USER\\Ad^^Registry(Key)\r\n");
    EXPECT_EQ(Records(), Lines{"Ad|Registry(Key)|HKEY_CURRENT_USER\\Ad|"});

    Select("Ad");
    form.Image2_MouseDown(1);
    EXPECT_TRUE(form.lvE1.ListItems.empty());
    EXPECT_EQ(files.contents(kStore), "");
    EXPECT_EQ(ExclusionRecords().Count(), 0);
    EXPECT_EQ(ErrorLog(), "");
}

class AllowedItemsRewriteFailure : public AllowedItemsTest {
  protected:
    AllowedItemsRewriteFailure() {
        for (int i = 0; i < 1000; ++i)
            old_ += "Threat" + std::to_string(i) + "^C:\\Folder\\^file.exe^FileSystem\r\n";
        files.addFile(kStore, old_);
        LoadExclusion();
        ExclusionRecords().Add({"New", "FileSystem", "C:\\", "new.exe"});
    }
    std::string old_;
};

TEST_F(AllowedItemsRewriteFailure, AWriteFailingHalfWayLosesNothing) {
    // A sharing violation half way is passed over: the old store stays, and the table
    // is read back from it.
    files.failWrite(3, failure::kPermissionDenied);
    WriteExclusions();
    EXPECT_EQ(files.contents(kStore), old_);
    EXPECT_FALSE(files.exists(AtomicFile::TempPathFor(kStore)));
    EXPECT_EQ(ExclusionRecords().Count(), 1000);
    EXPECT_NE(ErrorLog().find("Procedure ( WriteExclusions )"), std::string::npos);
}

TEST_F(AllowedItemsRewriteFailure, AFullDiskIsRetriedAndTheRewriteCompletes) {
    files.failWrite(3, failure::kDiskFull);
    WriteExclusions();
    EXPECT_EQ(files.contents(kStore), old_ + "New^C:\\^new.exe^FileSystem\r\n");
    EXPECT_EQ(ExclusionRecords().Count(), 1001);
    EXPECT_NE(ErrorLog().find("Error [ 61 ]"), std::string::npos);
}

TEST_F(AllowedItemsRewriteFailure, ARemovalThatCannotBeWrittenKeepsTheStore) {
    frmexclude().lvE1.ListItems[0].Selected = true;
    files.failWrite(2, failure::kPermissionDenied);
    frmexclude().cmdRemove_Click();
    EXPECT_EQ(files.contents(kStore), old_);
    EXPECT_EQ(ExclusionRecords().Count(), 1000);
    EXPECT_NE(ErrorLog().find("Procedure ( ReWriteExclusion1 )"), std::string::npos);
}

}  // namespace
}  // namespace orvex
