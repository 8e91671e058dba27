// BlockedPage.cpp: frmblocked. Backup.Dat changes only at the end of an action, from the
// rows of lvBackup that are left: an action cut short leaves the file as it was.
#include "pages/BlockedPage.h"

#include "core/AppState.h"
#include "core/ErrorHandler.h"
#include "core/Text.h"
#include "logs/UsageReport.h"
#include "platform/Failure.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"
#include "platform/RegistryHelper.h"
#include "removal/Deferred.h"
#include "stores/BackupStore.h"
#include "ui/UiHost.h"

namespace orvex {
namespace {

constexpr int kPictureDown = 2;
constexpr int kPictureNormal = 0;
constexpr int kHourglass = 11;
constexpr int kExplanation = 1241;  // what the window restores and deletes
constexpr int kArrow = 0;
constexpr int kLeftButton = 1;
constexpr int kRestoreAction = 3;

// Column numbers of lvBackup's texts (SubItems is column 1 on).
enum Column { kKind = 1, kOldLocation, kOldName, kNewLocation, kNewName, kThreat };

const std::string& Cell(const ui::ListItem& row, int column) {
    static const std::string kEmpty;
    const auto at = static_cast<std::size_t>(column - 1);
    return at < row.SubItems.size() ? row.SubItems[at] : kEmpty;
}

bool Exists(const std::string& path) {
    bool exists = false;
    ResumeNext([&] { exists = platform::FileHelper().FileExists(path); });
    return exists;
}

void Copy(const std::string& from, const std::string& to) {
    ResumeNext([&] { platform::Files().copy(from, to, true); });
}

void Wipe(const std::string& path) {
    ResumeNext([&] { WipeFile(path); });
}

// True when the row is to leave the list.
bool RestoreFile(const ui::ListItem& row) {
    const std::string original = Cell(row, kOldLocation) + Cell(row, kOldName);
    const std::string backup = Cell(row, kNewLocation) + Cell(row, kNewName);
    if (Exists(original)) {
        // The row stays whatever happens, though its backup is gone after this.
        Wipe(original);
        ui::DoEvents();
        if (Exists(backup)) {
            Copy(backup, original);
            Wipe(backup);
        }
        return false;
    }
    if (Exists(backup)) {
        Copy(backup, original);
        Wipe(backup);
    }
    return true;
}

// True when the row is to leave the list. The key text keeps a "|" and a value name when
// the item had them: the restore names a key with that text.
bool RestoreRegistryItem(const ui::ListItem& row) {
    std::string location = Cell(row, kNewLocation);
    if (location.find('\\') == std::string::npos) location += '\\';
    const std::string& name = Cell(row, kNewName);
    if (!Exists(location + name)) return false;
    const std::string& item = Cell(row, kOldName);
    const std::size_t slash = item.find('\\');
    const std::string rootName = slash == std::string::npos ? "" : item.substr(0, slash);
    const std::string subKey = item.substr(slash == std::string::npos ? 0 : slash + 1);
    const std::string file = location.ends_with('\\') ? location + name : location + "\\" + name;
    if (auto hive = platform::RegistryHelper::HiveOfName(rootName))
        ResumeNext([&] { platform::RegistryHelper().RestoreKey(file, *hive, subKey); });
    Wipe(location + "\\" + name);
    return true;
}

}  // namespace

FrmBlocked::FrmBlocked() : Form("frmblocked") {
    lvBackup.Checkboxes = true;
    lvBackup.ColumnHeaders = {
        "Date",         "Type of Backup", "Old Location", "Old File Name \\ Registry key",
        "New Location", "New File Name",  "Threat"};
    Image1.Click = [this] { Image1_MouseDown(kLeftButton); };
    Image2.Click = [this] { Image2_MouseDown(kLeftButton); };
    Image3.Click = [this] { Image3_MouseDown(kLeftButton); };
    Image4.Click = [this] { Image4_MouseDown(kLeftButton); };
}

void FrmBlocked::Form_Load() {
    lvback.ColumnHeaders = {""};
    LoadBackupDat();
    DisplayRollback();
    LoadData();
    rt1.Caption = Lng(kExplanation);
    SelectFirstThreat();
}

void FrmBlocked::DisplayRollback() {
    lvBackup.ListItems.clear();
    for (const BackupRecord& r : BackupRecords()) {
        if (r.BackupKind != kBackupKindRegistry && r.BackupKind != kBackupKindFile) continue;
        ui::ListItem row;
        row.Text = r.BackupDate;
        row.SubItems = {r.BackupKind,  r.OldLocation, r.OldName,
                        r.NewLocation, r.NewName,     r.ThreatName};
        lvBackup.ListItems.push_back(std::move(row));
    }
}

void FrmBlocked::LoadData() {
    for (const ui::ListItem& backup : lvBackup.ListItems) {
        const std::string& threat = Cell(backup, kThreat);
        bool listed = false;
        for (const ui::ListItem& row : lvback.ListItems)
            listed = listed || LCase(row.Text) == LCase(threat);
        if (listed) continue;
        ui::ListItem row;
        row.Text = threat;
        lvback.ListItems.push_back(std::move(row));
    }
}

void FrmBlocked::RestoreSelected() {
    App().RestartNeeded = VbFalse;
    for (std::size_t i = lvBackup.ListItems.size(); i >= 1; --i) {
        ui::DoEvents();
        if (i > lvBackup.ListItems.size() || !lvBackup.ListItems[i - 1].Checked) continue;
        const ui::ListItem row = lvBackup.ListItems[i - 1];
        const bool drop =
            Cell(row, kKind) == kBackupKindFile ? RestoreFile(row) : RestoreRegistryItem(row);
        if (drop) lvBackup.ListItems.erase(lvBackup.ListItems.begin() + (i - 1));
    }
    SaveBackupDat(lvBackup, VbFalse);
}

void FrmBlocked::Image1_MouseDown(int button) {
    if (button != kLeftButton) return;
    Hide();
    ui::Unload(*this);
}

void FrmBlocked::Image2_MouseDown(int button) {
    if (button != kLeftButton) return;
    Image2.Picture = kPictureDown;
    ui::Host().SetMousePointer(kHourglass);
    for (std::size_t i = lvback.ListItems.size(); i >= 1; --i) {
        if (!lvback.ListItems[i - 1].Selected) continue;
        const std::string threat = lvback.ListItems[i - 1].Text;
        PhoneHome(threat, kRestoreAction);
        CheckThreat(threat);
        lvback.ListItems.erase(lvback.ListItems.begin() + (i - 1));
    }
    RestoreSelected();
    Image2.Picture = kPictureNormal;
    ui::Host().SetMousePointer(kArrow);
    SelectFirstThreat();
}

void FrmBlocked::Image3_MouseDown(int button) {
    if (button != kLeftButton) return;
    Image3.Picture = kPictureDown;
    for (std::size_t i = lvback.ListItems.size(); i >= 1; --i) {
        if (!lvback.ListItems[i - 1].Selected) continue;
        CheckThreat(lvback.ListItems[i - 1].Text);
        DropCheckedBackups();
        lvback.ListItems.erase(lvback.ListItems.begin() + (i - 1));
    }
    SaveBackupDat(lvBackup, VbFalse);
    SelectFirstThreat();
}

void FrmBlocked::Image4_MouseDown(int button) {
    if (button != kLeftButton) return;
    for (ui::ListItem& row : lvBackup.ListItems)
        row.Checked = true;
    DropCheckedBackups();
    lvback.ListItems.clear();
    SaveBackupDat(lvBackup, VbFalse);
}

void FrmBlocked::lvback_ColumnClick(int column) {
    ui::SortOnColumnClick(lvback, column);
}

void FrmBlocked::CheckThreat(const std::string& threat) {
    const std::string wanted = LCase(threat);
    for (std::size_t i = lvBackup.ListItems.size(); i >= 1; --i) {
        ui::ListItem& row = lvBackup.ListItems[i - 1];
        if (LCase(Cell(row, kThreat)) == wanted) row.Checked = true;
    }
}

void FrmBlocked::DropCheckedBackups() {
    for (std::size_t i = lvBackup.ListItems.size(); i >= 1; --i) {
        const ui::ListItem& row = lvBackup.ListItems[i - 1];
        if (!row.Checked) continue;
        const std::string backup = Cell(row, kNewLocation) + Cell(row, kNewName);
        if (Exists(backup)) Wipe(backup);
        lvBackup.ListItems.erase(lvBackup.ListItems.begin() + (i - 1));
    }
}

void FrmBlocked::SelectFirstThreat() {
    if (!lvback.ListItems.empty()) lvback.ListItems.front().Selected = true;
}

FrmBlocked& frmblocked() {
    return ui::TheForm<FrmBlocked>();
}

}  // namespace orvex
