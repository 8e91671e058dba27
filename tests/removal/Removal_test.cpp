// Removal_test.cpp: the removal pass over the findings and the restore window that puts them
// back, on the memory machine.
#include <gtest/gtest.h>

#include "../scan/ScanFixture.h"
#include "core/AppState.h"
#include "pages/BlockedPage.h"
#include "pages/RemovalPage.h"
#include "pages/ResultsPage.h"
#include "removal/RemovalDriver.h"
#include "scan/Recorder.h"
#include "stores/BackupStore.h"

namespace orvex::testing {
namespace {

using platform::Hive;

constexpr const char* kBadFolder = "C:\\Bad\\";
constexpr const char* kBackups = "C:\\Program Files\\Orvex\\Backup";

class RemovalTest : public ScanTest {
  protected:
    RemovalTest() {
        App().BackupFolder = kBackups;
        files.addFolder(kBackups);
        processes.setOsVersion(2, 5, 1);
    }
    static void AddRow(const std::string& threat, const std::string& kind,
                       const std::string& location, const std::string& item) {
        ScumListOfRun().add(ScumRow{threat, kind, "Confirmed", location, item});
    }
    static std::vector<std::string> RowItems() {
        std::vector<std::string> items;
        for (const ScumRow& row : ScumListOfRun())
            items.push_back(row.category + ":" + row.item);
        return items;
    }
};

// Every kind of row through the remove button: what leaves the list, what the bar counts,
// what is backed up, and the browser value written back after its removal.
TEST_F(RemovalTest, TheRemoveButtonEndsEachKindOfRowAsItsWordSays) {
    files.addFile("C:\\Bad\\spy.dll", "MZ spy");
    registry.setString(Hive::LocalMachine, "Software\\Spy\\Sub", "Path", "C:\\Bad\\spy.dll");
    registry.setString(Hive::CurrentUser, "Software\\Browser\\Main", "Start Page", "http://spy");
    processes.addProcess("C:\\WINDOWS\\system32\\smss.exe");  // the first is never looked at
    const std::uint32_t pid = processes.addProcess("C:\\Elsewhere\\spy.exe");
    AddRow("Spy", "FileSystem", kBadFolder, "spy.dll");
    AddRow("Spy", "FileSystem", kBadFolder, "gone.dll");
    AddRow("Spy", "Registry(Key)", "HKEY_LOCAL_MACHINE\\Software\\", "Spy");
    AddRow("Spy", "Registry(Key)", "HKEY_LOCAL_MACHINE\\Software\\", "NotThere");
    AddRow("IEReset", "Registry(Value)", "HKEY_CURRENT_USER\\Software\\Browser\\Main",
           "Start Page");
    AddRow("Spy", "Memory Resident", "C:\\Bad\\", "spy.exe");

    frmresults().cmdBlock_Click();

    EXPECT_EQ(RowItems(),
              (std::vector<std::string>{"Registry(Key):NotThere", "Memory Resident:spy.exe"}));
    EXPECT_FALSE(files.exists("C:\\Bad\\spy.dll"));
    EXPECT_FALSE(registry.hasKey(Hive::LocalMachine, "Software\\Spy"));
    EXPECT_EQ(registry.data(Hive::CurrentUser, "Software\\Browser\\Main", "Start Page"), "http://");
    EXPECT_FALSE(processes.running(pid));  // only the file name is compared
    EXPECT_EQ(frmremoval().pb1.Max, 5);
    EXPECT_EQ(frmremoval().pb1.Value, 3);  // a missing file and a failed delete do not count
    EXPECT_FALSE(IsTrue(App().RestartNeeded));
    LoadBackupDat();
    ASSERT_EQ(BackupRecords().Count(), 3);
    // The last row goes first; a value's backup is its whole key.
    EXPECT_EQ(BackupRecords()[1].OldName, "HKEY_CURRENT_USER\\Software\\Browser\\Main");
    EXPECT_EQ(BackupRecords()[2].OldName, "HKEY_LOCAL_MACHINE\\Software\\Spy");
    EXPECT_EQ(BackupRecords()[2].OldLocation, "^");
    const BackupRecord& file = BackupRecords()[3];
    EXPECT_EQ(file.OldLocation + file.OldName, "C:\\Bad\\spy.dll");
    EXPECT_EQ(files.contents(file.NewLocation + file.NewName), "MZ spy");
}

TEST_F(RemovalTest, BlockAllChecksOnlyTheNamedThreatAndAnEmptyListKeepsTheRestartFlag) {
    App().RestartNeeded = VbTrue;
    BlockAll("Spy");
    EXPECT_TRUE(IsTrue(App().RestartNeeded));

    files.addFile("C:\\Bad\\a.dll", "a");
    files.addFile("C:\\Bad\\b.dll", "b");
    AddRow("Spy", "FileSystem", kBadFolder, "a.dll");
    AddRow("Other", "FileSystem", kBadFolder, "b.dll");
    BlockAll("SPY");
    EXPECT_EQ(RowItems(), std::vector<std::string>{"FileSystem:b.dll"});
    EXPECT_FALSE(IsTrue(App().RestartNeeded));
}

TEST_F(RemovalTest, ACancelStopsThePassAtTheNextRow) {
    for (const char* name : {"a.dll", "b.dll", "c.dll"}) {
        files.addFile(std::string(kBadFolder) + name, name);
        AddRow("Spy", "FileSystem", kBadFolder, name);
        ScumListOfRun().setChecked(ScumListOfRun().count(), true);
    }
    host.OnEveryYield([](std::int64_t) {
        if (ScumListOfRun().count() < 3) App().RemovalCancelled = VbTrue;
    });
    BlockSelected();
    EXPECT_EQ(RowItems(), (std::vector<std::string>{"FileSystem:a.dll", "FileSystem:b.dll"}));
}

// Removes everything found with backups, then restores through the restore window.
class RestoreTest : public RemovalTest {
  protected:
    void RemoveAll() {
        files.addFile("C:\\Bad\\spy.dll", std::string("MZ\0\1spy", 7));
        registry.setString(Hive::LocalMachine, "Software\\Spy", "", "default");
        registry.setDword(Hive::LocalMachine, "Software\\Spy\\Sub", "Count", 7);
        registry.setString(Hive::CurrentUser, "Software\\Run", "spy", "C:\\Bad\\spy.dll");
        AddRow("Spy", "FileSystem", kBadFolder, "spy.dll");
        AddRow("Spy", "Registry(Key)", "HKEY_LOCAL_MACHINE\\Software\\", "Spy");
        AddRow("Adware", "Registry(Value)", "HKEY_CURRENT_USER\\Software\\Run", "spy");
        frmresults().cmdBlock_Click();
        ASSERT_TRUE(ScumListOfRun().empty());
    }
    FrmBlocked& Press(const std::vector<std::string>& threats, void (FrmBlocked::*button)(int)) {
        FrmBlocked& form = frmblocked();
        for (ui::ListItem& row : form.lvback.ListItems)
            row.Selected = std::find(threats.begin(), threats.end(), row.Text) != threats.end();
        (form.*button)(1);
        return form;
    }
};

TEST_F(RestoreTest, RestoringEveryThreatPutsFilesKeysAndValuesBackAndEmptiesTheStore) {
    RemoveAll();
    const std::vector<std::string> copies = files.filesBelow(kBackups);
    ASSERT_EQ(copies.size(), 3u);
    FrmBlocked& form = Press({"Spy", "Adware"}, &FrmBlocked::Image2_MouseDown);
    EXPECT_EQ(files.contents("C:\\Bad\\spy.dll"), std::string("MZ\0\1spy", 7));
    EXPECT_EQ(registry.data(Hive::LocalMachine, "Software\\Spy", ""), "default");
    EXPECT_EQ(registry.dword(Hive::LocalMachine, "Software\\Spy\\Sub", "Count"), 7u);
    EXPECT_EQ(registry.data(Hive::CurrentUser, "Software\\Run", "spy"), "C:\\Bad\\spy.dll");
    EXPECT_TRUE(form.lvBackup.ListItems.empty());
    EXPECT_TRUE(files.filesBelow(kBackups).empty());
    LoadBackupDat();
    EXPECT_EQ(BackupRecords().Count(), 0);
}

TEST_F(RestoreTest, AFileWhoseOriginalCameBackIsOverwrittenAndKeepsItsLine) {
    RemoveAll();
    files.addFile("C:\\Bad\\spy.dll", "new");
    Press({"Spy"}, &FrmBlocked::Image2_MouseDown);
    EXPECT_EQ(files.contents("C:\\Bad\\spy.dll"), std::string("MZ\0\1spy", 7));
    LoadBackupDat();
    ASSERT_EQ(BackupRecords().Count(), 2);  // the file's line stays, the key's goes
    EXPECT_EQ(BackupRecords()[2].BackupKind, "File");
}

TEST_F(RestoreTest, DeletingAThreatWipesOnlyItsBackups) {
    RemoveAll();
    FrmBlocked& form = Press({"Spy"}, &FrmBlocked::Image3_MouseDown);
    EXPECT_EQ(files.filesBelow(kBackups).size(), 1u);
    ASSERT_EQ(form.lvback.ListItems.size(), 1u);
    EXPECT_TRUE(form.lvback.ListItems[0].Selected);
    form.Image4_MouseDown(1);
    EXPECT_TRUE(files.filesBelow(kBackups).empty());
    EXPECT_FALSE(files.exists("C:\\Bad\\spy.dll"));
    LoadBackupDat();
    EXPECT_EQ(BackupRecords().Count(), 0);
}

}  // namespace
}  // namespace orvex::testing
