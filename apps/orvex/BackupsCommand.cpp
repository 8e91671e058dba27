// BackupsCommand.cpp: orvex backups: the backups of Backup.Dat, and the restore window's
// restore, delete and delete-all buttons.
#include <iostream>
#include <nlohmann/json.hpp>

#include "Commands.h"
#include "app/BackupRunner.h"
#include "platform/FileHelper.h"
#include "platform/Platform.h"

namespace orvex::cli {
namespace {

// The program's folder in engine terms; none, with a message, when it cannot be used.
std::optional<std::string> ProgramFolder(const BackupsOptions& o) {
    if (o.appDir.empty()) {
        std::string folder = platform::FileHelper::FolderPart(platform::Sys().executablePath());
        while (folder.size() > 3 && folder.back() == '\\')
            folder.pop_back();
        return folder;
    }
    std::optional<std::string> folder = EnginePath(o.appDir);
    if (!folder || !platform::FileHelper().FolderExists(*folder)) {
        std::cerr << "orvex: --app-dir " << o.appDir << ": no such folder\n";
        return std::nullopt;
    }
    return folder;
}

nlohmann::json RecordJson(const BackupRecord& r) {
    return {{"date", r.BackupDate},  {"kind", r.BackupKind},         {"oldLocation", r.OldLocation},
            {"oldName", r.OldName},  {"newLocation", r.NewLocation}, {"newName", r.NewName},
            {"threat", r.ThreatName}};
}

void PrintRecords(const std::vector<BackupRecord>& records, bool json) {
    if (json) {
        nlohmann::json rows = nlohmann::json::array();
        for (const BackupRecord& r : records)
            rows.push_back(RecordJson(r));
        std::cout << nlohmann::json{{"backups", rows}}.dump(
                         2, ' ', false, nlohmann::json::error_handler_t::replace)
                  << "\n";
        return;
    }
    if (records.empty()) std::cout << "No backups.\n";
    for (const BackupRecord& r : records) {
        const std::string original = r.BackupKind == "File" ? r.OldLocation + r.OldName : r.OldName;
        std::cout << r.ThreatName << "  " << r.BackupKind << "  " << original << "  ("
                  << r.BackupDate << ", " << r.NewLocation << r.NewName << ")\n";
    }
}

int RunAction(const BackupsOptions& o, BackupAction action) {
    if (o.all == !o.threats.empty()) {
        std::cerr << "orvex: name the threats (THREAT...) or give --all, not both\n";
        return kExitError;
    }
    const std::optional<std::string> folder = ProgramFolder(o);
    if (!folder) return kExitError;
    const BackupActionResult result = RunBackupAction(*folder, action, o.threats);
    if (result.exitCode != 0) {
        std::cerr << "orvex: " << result.error << "; `orvex backups list` shows them\n";
        return kExitError;
    }
    if (result.restartNeeded) std::cout << "A restart is needed to finish.\n";
    return kExitClean;
}

}  // namespace

int ListBackupsCommand(const BackupsOptions& o) {
    const std::optional<std::string> folder = ProgramFolder(o);
    if (!folder) return kExitError;
    PrintRecords(ListBackups(*folder), o.json);
    return kExitClean;
}

int RestoreBackups(const BackupsOptions& o) {
    return RunAction(o, BackupAction::kRestore);
}

int DeleteBackups(const BackupsOptions& o) {
    return RunAction(o, BackupAction::kDelete);
}

}  // namespace orvex::cli
