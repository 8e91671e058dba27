// BackupRunner.cpp: frmblocked driven on the headless host: its threats are selected as
// the user would select them, then its button is pressed.
#include "app/BackupRunner.h"

#include "core/AppState.h"
#include "core/Config.h"
#include "core/Text.h"
#include "pages/BlockedPage.h"
#include "platform/RegistryHelper.h"
#include "ui/HeadlessHost.h"

namespace orvex {
namespace {

constexpr int kLeftButton = 1;

// The data folder holds the usage report a restore appends to: the registry's DataPath as
// start-up reads it, or the program's folder where there is none, never the working folder.
std::string DataFolderOf(const std::string& appPath) {
    platform::RegistryHelper registry;
    registry.RootKey(platform::Hive::LocalMachine);
    registry.KeyPath(config::kProductKey);
    const std::string dataPath = registry.GetValue("DataPath");
    return (dataPath.empty() ? appPath : dataPath) + "\\";
}

void UseProgramFolder(const std::string& appPath) {
    App().AppPath = appPath;
    App().BackupFolder = appPath + "\\Backup";
    App().DataFolder = DataFolderOf(appPath);
}

ui::ListItem* ThreatRow(FrmBlocked& form, const std::string& threat) {
    for (ui::ListItem& row : form.lvback.ListItems)
        if (LCase(row.Text) == LCase(threat)) return &row;
    return nullptr;
}

// Selects the rows of `threats`; the first threat that has none, if any.
std::optional<std::string> SelectThreats(FrmBlocked& form,
                                         const std::vector<std::string>& threats) {
    for (ui::ListItem& row : form.lvback.ListItems)
        row.Selected = threats.empty();
    for (const std::string& threat : threats) {
        ui::ListItem* row = ThreatRow(form, threat);
        if (row == nullptr) return threat;
        row->Selected = true;
    }
    return std::nullopt;
}

}  // namespace

std::vector<BackupRecord> ListBackups(const std::string& appPath) {
    UseProgramFolder(appPath);
    LoadBackupDat();
    return {BackupRecords().begin(), BackupRecords().end()};
}

BackupActionResult RunBackupAction(const std::string& appPath, BackupAction action,
                                   const std::vector<std::string>& threats) {
    UseProgramFolder(appPath);
    ui::HeadlessHost host;
    ui::ScopedHost installed(host);
    FrmBlocked& form = frmblocked();
    BackupActionResult result;
    if (const auto missing = SelectThreats(form, threats)) {
        result.exitCode = 2;
        result.error = "no backups of the threat \"" + *missing + "\"";
        ui::Unload(form);
        return result;
    }
    if (action == BackupAction::kRestore)
        form.Image2_MouseDown(kLeftButton);
    else if (threats.empty())
        form.Image4_MouseDown(kLeftButton);
    else
        form.Image3_MouseDown(kLeftButton);
    result.restartNeeded = IsTrue(App().RestartNeeded);
    ui::Unload(form);
    return result;
}

}  // namespace orvex
