// BackupStore_test.cpp: Backup.Dat appended, read, rewritten from the list, and the
// ".asw" stems.
#include "stores/BackupStore.h"

#include "core/AppState.h"
#include "core/AtomicFile.h"
#include "support/FailureOf.h"
#include "support/MemoryFixture.h"
#include "ui/Form.h"

namespace orvex {
namespace {

const std::string kStore = "C:\\App\\Backup.Dat";
const std::string kNow = "11/22/2026 7:14:05 PM";  // the memory machine's clock
const std::string kFileLine = "File*" + kNow + "*C:\\x\\*a.exe*C:\\App\\Backup\\*1000012.asw*Spy";

// A stand-in for frmblocked, whose hidden list the rewrite reads.
class FakeBlocked : public ui::Form {
  public:
    FakeBlocked() : Form("frmblocked") {}
    ui::ListView lvBackup{*this, "lvBackup"};
};

class BackupStoreTest : public testing::MemoryPlatformTest {
  protected:
    BackupStoreTest() {
        App().AppPath = "C:\\App";
        App().BackupFolder = "C:\\App\\Backup";
        App().DataFolder = "C:\\Data\\";
        files.addFolder("C:\\App\\Backup");
        files.addFolder("C:\\Data");
    }

    static std::vector<std::string> Fields(const BackupRecord& r) {
        return {r.BackupDate,  r.BackupKind, r.OldLocation, r.OldName,
                r.NewLocation, r.NewName,    r.ThreatName};
    }
    // The rows frmblocked shows for the records: date as text, the rest as columns.
    static void Show(ui::ListView& list) {
        for (const BackupRecord& r : BackupRecords()) {
            ui::ListItem row;
            row.Text = r.BackupDate;
            row.SubItems = {r.BackupKind,  r.OldLocation, r.OldName,
                            r.NewLocation, r.NewName,     r.ThreatName};
            list.ListItems.push_back(row);
        }
    }
};

TEST_F(BackupStoreTest, AddBackupDatWritesTheFileOrderWithCaretsForEmptyFields) {
    AddBackupDat("File", "a.exe", "C:\\x\\", "1000012.asw", "C:\\App\\Backup\\", "Spy", VbFalse);
    AddBackupDat("Registry", "HKEY_CURRENT_USER\\Software\\Ad|Run", "", "1000013.asw",
                 "C:\\App\\BACKUP~1\\", "", VbFalse);
    AddBackupDat("", "", "", "", "", "", VbFalse);
    EXPECT_EQ(files.contents(kStore),
              kFileLine + "\r\n" + "Registry*" + kNow +
                  "*^*HKEY_CURRENT_USER\\Software\\Ad|Run*C:\\App\\BACKUP~1\\*1000013.asw*\r\n" +
                  "^*" + kNow + "*^*^*^*^*\r\n");
    // Without reload the table does not see the new lines.
    EXPECT_EQ(BackupRecords().Count(), 0);
    AddBackupDat("File", "b.exe", "C:\\y\\", "2.asw", "C:\\B\\", "Spy", VbTrue);
    EXPECT_EQ(BackupRecords().Count(), 4);
    // A star in a registry item shifts the later fields.
    AddBackupDat("Registry", "HKEY_CURRENT_USER\\Software\\a*b", "", "77.asw", "C:\\BACKUP~1\\",
                 "Spy", VbTrue);
    ASSERT_EQ(BackupRecords().Count(), 5);
    EXPECT_EQ(Fields(BackupRecords()[5]),
              (std::vector<std::string>{kNow, "Registry", "^", "HKEY_CURRENT_USER\\Software\\a",
                                        "b", "C:\\BACKUP~1\\", "77.asw"}));
    EXPECT_EQ(ErrorLog(), "");
}

// Stray separators and binary bytes are kept as they are.
TEST_F(BackupStoreTest, ShortLinesAreSkippedOrKeptWithTheirMissingFieldsLogged) {
    const char kBinary[] = "\x00*\xff*\x1a*\n*\x80*\x01*\x7f*extra";
    files.addFile(kStore,
                  "File*d*l*n\r\n"                                // 4 fields: skipped
                  "File*d*l*n*nl\r\n"                             // 5: a record, two fields missing
                  "File*d*l*n*nl*nn\r\n\r\n" +                    // 6: the threat missing
                      std::string(kBinary, sizeof kBinary - 1) +  // more than 7: cut
                      "\r*******\rFile");
    LoadBackupDat();
    ASSERT_EQ(BackupRecords().Count(), 4);
    EXPECT_EQ(Fields(BackupRecords()[1]),
              (std::vector<std::string>{"d", "File", "l", "n", "nl", "", ""}));
    EXPECT_EQ(Fields(BackupRecords()[2]),
              (std::vector<std::string>{"d", "File", "l", "n", "nl", "nn", ""}));
    EXPECT_EQ(Fields(BackupRecords()[3]),
              (std::vector<std::string>{"\xff", std::string(1, '\0'), "\x1a", "\n", "\x80", "\x01",
                                        "\x7f"}));
    EXPECT_EQ(Fields(BackupRecords()[4]), std::vector<std::string>(7, ""));
    EXPECT_NE(ErrorLog().find("Procedure ( LoadBackupDat )"), std::string::npos);
}

TEST_F(BackupStoreTest, SaveBackupDatRoundTripsTheRowsInFileOrder) {
    BackupRecord stale;
    stale.ThreatName = "stale";
    BackupRecords().Add(stale);
    LoadBackupDat();  // an absent file gives an empty table without a message
    EXPECT_EQ(BackupRecords().Count(), 0);
    const std::string registryLine =
        "Registry*" + kNow + "*^*HKEY_LOCAL_MACHINE\\Software\\X*C:\\BACKUP~1\\*99.asw*Ad";
    files.addFile(kStore, kFileLine + "\r\n" + registryLine + "\r\n");
    LoadBackupDat();
    FakeBlocked& blocked = ui::TheForm<FakeBlocked>();
    Show(blocked.lvBackup);

    SaveBackupDat(blocked.lvBackup, VbFalse);
    EXPECT_EQ(files.contents(kStore), kFileLine + "\r\n" + registryLine + "\r\n");

    blocked.lvBackup.ListItems.erase(blocked.lvBackup.ListItems.begin());
    SaveBackupDat(blocked.lvBackup, VbTrue);
    EXPECT_EQ(files.contents(kStore), registryLine + "\r\n");
    ASSERT_EQ(BackupRecords().Count(), 1);
    EXPECT_EQ(BackupRecords()[1].ThreatName, "Ad");

    blocked.lvBackup.ListItems.clear();
    SaveBackupDat(blocked.lvBackup, VbTrue);
    EXPECT_EQ(files.contents(kStore), "");
    EXPECT_EQ(BackupRecords().Count(), 0);
    EXPECT_EQ(ErrorLog(), "");

    // A row without columns is written with empty fields.
    blocked.lvBackup.ListItems.push_back(ui::ListItem{});
    blocked.lvBackup.ListItems[0].Text = "date";
    SaveBackupDat(blocked.lvBackup, VbFalse);
    EXPECT_EQ(files.contents(kStore), "*date*****\r\n");
}

TEST_F(BackupStoreTest, ARewriteFailingHalfWayLeavesTheOldStore) {
    std::string old;
    for (int i = 0; i < 500; ++i)
        old += kFileLine + std::to_string(i) + "\r\n";
    files.addFile(kStore, old);
    LoadBackupDat();
    FakeBlocked& blocked = ui::TheForm<FakeBlocked>();
    Show(blocked.lvBackup);
    blocked.lvBackup.ListItems.pop_back();

    files.failWrite(4, failure::kPermissionDenied);
    SaveBackupDat(blocked.lvBackup, VbTrue);
    EXPECT_EQ(files.contents(kStore), old);
    EXPECT_FALSE(files.exists(AtomicFile::TempPathFor(kStore)));
    EXPECT_EQ(BackupRecords().Count(), 500);
    EXPECT_NE(ErrorLog().find("Procedure ( SaveBackupDat )"), std::string::npos);
}

TEST_F(BackupStoreTest, AnAppendThatCannotOpenTheStoreWritesNothing) {
    files.addFile(kStore, kFileLine + "\r\n");
    files.lock(kStore);
    AddBackupDat("File", "b.exe", "C:\\y\\", "2.asw", "C:\\B\\", "Spy", VbFalse);
    files.lock(kStore, false);
    EXPECT_EQ(files.contents(kStore), kFileLine + "\r\n");
    EXPECT_NE(ErrorLog().find("Procedure ( AddBackupDat )"), std::string::npos);
}

// The count is kept between stems, yet every stem must be what a fresh count gives.
TEST_F(BackupStoreTest, TheStemIsTicksThenShownFilesCutToEightAndNeedsTheFolder) {
    system.setTickStep(0);
    system.setTickCount(1234);
    const auto put = [&](const std::string& name, std::uint32_t attributes, bool ours) {
        const std::string path = "C:\\App\\Backup\\" + name;
        if (ours)
            WriteIntoBackupFolder(path, [&] { files.addFile(path, "", attributes); });
        else
            files.addFile(path, "", attributes);
        return BackupStem();
    };
    const std::uint32_t normal = platform::attr::kArchive;
    std::vector<std::string> stems{BackupStem()};
    put("h.asw", platform::attr::kHidden, false);
    put("s.asw", platform::attr::kSystem, false);
    files.addFolder("C:\\App\\Backup\\sub");
    for (const auto& [name, attributes, ours] : {std::tuple("1.asw", normal, false),
                                                 {"2.asw", normal, true},
                                                 {"2.asw", normal, true},
                                                 {"3.asw", platform::attr::kHidden, true},
                                                 {"4.asw", normal, false}})
        stems.push_back(put(name, attributes, ours));
    files.remove("C:\\App\\Backup\\1.asw");
    stems.push_back(BackupStem());
    EXPECT_EQ(stems, (std::vector<std::string>{"12340", "12341", "12342", "12342", "12342", "12343",
                                               "12342"}));

    system.setTickCount(1234567);
    for (int i = 3; i <= 12; ++i)
        files.addFile("C:\\App\\Backup\\f" + std::to_string(i));
    EXPECT_EQ(BackupStem(), "12345671");  // "123456712" cut to eight

    system.setTickCount(4294967295u);
    EXPECT_EQ(BackupStem(), "42949672");  // the count is cut away altogether

    App().BackupFolder = "C:\\App\\Missing";
    EXPECT_EQ(testing::FailureOf([] { BackupStem(); }), failure::kPathNotFound);
}

}  // namespace
}  // namespace orvex
